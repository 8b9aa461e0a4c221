# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
"""What a server's own platform libraries have to supply: the symbols that the product leaves undefined.

    platform_symbols.py LIST LIBRARY    the library leaves undefined what the list names, neither more nor less
"""

import subprocess
import sys


def undefined(library):
    """The system's own symbols that the library needs from elsewhere, as C++ declares them."""
    answer = subprocess.run(["nm", "--dynamic", "--undefined-only", "--demangle", library],
                            check=True, capture_output=True, text=True)
    symbols = (line.split(maxsplit=1)[1] for line in answer.stdout.splitlines())
    return {symbol for symbol in symbols if "kuv::" in symbol.split("(")[0]}


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        promised = {line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")}
    needed = undefined(sys.argv[2])
    for symbol in sorted(needed - promised):
        print(f"{sys.argv[2]} needs {symbol}, which no server promises")
    for symbol in sorted(promised - needed):
        print(f"{sys.argv[2]} does not need {symbol}, which is listed")
    sys.exit(0 if needed == promised else 1)


main()
