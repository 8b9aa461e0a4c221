"""Counts the instructions of calls with valgrind, and prints them as a JSON object.

    count_instructions.py REPEATED_CALLS
"""

import json
import re
import subprocess
import sys

CALLS = {  # what to call, how often at first and again, and how many are counted then
    "unchanged trigger": ("refresh", 2, 4, 2000),
    "log call, logging off": ("log-off", 1000, 11000, 10000),
    "log call, below the level": ("log-below", 1000, 11000, 10000),
}


def instructions(program, call, count):
    done = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program, call, str(count)],
                          capture_output=True, text=True, check=True)
    return int(re.search(r"Collected : (\d+)", done.stderr).group(1))


def main(program):
    print(json.dumps({name: (instructions(program, call, more) - instructions(program, call, few)) / counted
                      for name, (call, few, more, counted) in CALLS.items()}))


if __name__ == "__main__":
    main(*sys.argv[1:])
