# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""Whether what a run said is true of what it left."""

import json

DONE, TRIGGER_ERRORS, REJECTED, FAILED, REFUSED, WRONG_USAGE = 0, 1, 2, 3, 4, 64
DOCUMENTED = {DONE, TRIGGER_ERRORS, REJECTED, FAILED, REFUSED, WRONG_USAGE}


class Case:
    """A command on a site, and what an undisturbed run of it makes of it."""

    def __init__(self, name, template, arguments):
        self.name = name
        self.template = template
        self.arguments = arguments
        self.json = "--json" in arguments
        self.command = next(word for word in arguments if not word.startswith("-"))
        self.is_pass = self.command in ("apply", "refresh")
        self.before = self.after = self.undisturbed = None


def complaints(case, run, left, out_was_lost=False):
    """What is wrong about a run that left this; nothing mostly."""
    if run.signal:
        return [f"killed by signal {run.signal}"]
    if run.status not in DOCUMENTED:
        return [f"exit status {run.status}"]
    found = [f"damaged: {fault}" for fault in left.faults]
    answer = None
    if case.json and run.status != WRONG_USAGE and not out_was_lost and not said_on_stderr(run):
        try:
            answer = json.loads(run.out.decode("utf-8"))
        except ValueError:
            return [*found, "standard output is not one JSON document"]
        if isinstance(answer, dict) and "success" in answer and case.command != "show":
            if answer["success"] != (run.status in (DONE, TRIGGER_ERRORS)):
                found.append(f"success {answer['success']} with exit status {run.status}")
    if case.undisturbed.status not in (DONE, run.status) and run.status != FAILED and not is_unreadable(run):
        return [*found, f"exit status {run.status} for {case.undisturbed.status}"]
    if case.is_pass:
        return [*found, *about_a_pass(case, run, answer, left)]
    return [*found, *about_the_others(case, run, left)]


def said_on_stderr(run):
    """The outcome could not be written where it belongs, and that was said."""
    return run.status == FAILED and b"cannot write the outcome to standard output" in run.err


def is_unreadable(run):
    """A document could not be read, and was rejected for it."""
    return run.status == REJECTED and any(said in text_of(run) for said in ("cannot open", "cannot read"))


def text_of(run):
    return (run.out + run.err).decode("utf-8", "replace")


def same(one, other):
    return (one.records, one.documents, one.pending) == (other.records, other.documents, other.pending)


def same_but_for_their_tables(one, other):
    """A pass that failed leaves an entry of the history, for which older tables are brought up to date."""
    def records(remains):
        return [row for row in remains.records if row[0] != "tables of version"]
    return (records(one), one.documents, one.pending) == (records(other), other.documents, other.pending)


def must_be(left, wanted, said):
    return [] if same(left, wanted) else [f"not what it said ({said})"]


def about_the_others(case, run, left):
    text = text_of(run)
    if is_unreadable(run):
        return must_be(left, case.before, "rejected")
    if run.status == case.undisturbed.status and run.status != FAILED:
        wrong = [] if run.out == case.undisturbed.out else ["printed something else"]
        return wrong + must_be(left, case.after, f"exit status {run.status}")
    if run.status == REJECTED:
        return must_be(left, case.before, "rejected") + ["rejected a faultless document"]
    if run.status != FAILED:
        return [f"exit status {run.status}"]
    if "The inventory is stored." in text:
        return must_be(left, case.after, "the inventory is stored")
    if "The backup is restored." in text:
        return must_be(left, case.after, "the backup is restored")
    if "not known" in text:
        return [] if same(left, case.before) or same(left, case.after) else ["neither before nor after"]
    return must_be(left, case.before, "failed")


def about_a_pass(case, run, answer, left):
    text = text_of(run)
    if run.status == DONE:
        return about_done(case, run, answer, left)
    if run.status == TRIGGER_ERRORS:
        return about_trigger_errors(case, answer, left)
    if run.status == REJECTED:
        if case.undisturbed.status == REJECTED or is_unreadable(run):
            return must_be(left, case.before, "rejected")
        return ["rejected a faultless document"]
    if run.status != FAILED:
        return [f"exit status {run.status}"]
    return about_failed(case, answer, text, left)


def about_done(case, run, answer, left):
    found = []
    if left.records != case.after.records or left.documents != case.after.documents:
        found.append("done, and something else is stored")
    if not left.pending <= reconciled_by(case):
        found.append("other cameras are pending")
    if answer is None:
        return found
    if set(answer["reconciled"]) | left.pending != reconciled_by(case) or set(answer["reconciled"]) & left.pending:
        found.append("reconciled cameras and pending ones do not add up")
    undisturbed = json.loads(case.undisturbed.out)
    if {**answer, "reconciled": []} != {**undisturbed, "reconciled": []}:
        found.append("printed something else")
    return found


def reconciled_by(case):
    return case.reconciled


def about_trigger_errors(case, answer, left):
    """Some triggers failed, and are gone; the rest is as it says."""
    found = [] if left.documents == case.after.documents else ["done, and its documents are not stored"]
    if answer is None:
        return found
    if not answer["errors"] or not all(error["message"].startswith("Trigger ") for error in answer["errors"]):
        found.append("exit status 1 without a trigger's error")
    applied = {int(number) for number in answer["state"]["appliedTriggers"]}
    if applied != {row[0] for row in left.numbered["triggers"]}:
        found.append("applied triggers are not those stored")
    topics = {(int(number), int(camera), topic)
              for number, cameras in answer["state"]["onvifTopicsByTrigger"].items()
              for camera, named in cameras.items() for topic in named}
    if topics != {row[:3] for row in left.topics if row[1] is not None}:
        found.append("the state's topics are not those stored")
    return found + about_changes(case, answer, left)


def about_changes(case, answer, left):
    """The counts of what was written and deleted."""
    found = []
    for kind, counted in answer["changes"].items():
        before, now = case.before.numbered[kind], left.numbered[kind]
        if kind == "triggers":
            deleted = len({row[0] for row in before} - {row[0] for row in now})
        else:
            deleted = len(before - now)
        if counted != {"written": len(now - before), "deleted": deleted}:
            found.append(f"{kind}: {counted}, and {len(now - before)} came and {deleted} went")
    return found


def about_failed(case, answer, text, left):
    """By what it says of what is stored."""
    if "not known" in text:
        return [] if left.documents in (case.before.documents, case.after.documents) else ["other documents"]
    if "The pass is done" in text:
        return must_be(left._replace(pending=frozenset()), case.after, "the pass is done")
    kept = ("The records of the pass are committed" in text or
            "What the pass wrote is committed" in text or
            "What the pass wrote before the failure is committed" in text)
    if not kept:
        return must_be(left, case.before, "nothing was kept")
    found = [] if left.documents == case.before.documents else ["committed, and the documents are stored too"]
    if "The records of the pass are committed" in text and "Trigger " not in text \
            and left.records != case.after.records:
        found.append("committed, and something else is stored")
    if answer is not None and answer.get("changes"):
        found += about_changes(case, answer, left)
    return found
