#!/usr/bin/env python3
"""Doxygen input filter for the public headers.

The headers are documented with plain `//` comments: an opening block that
says what the file is for, a block directly above each declaration, and short
trailing comments on enumerators and members. Doxygen reads only its own
comment forms, so this filter rewrites a header on the fly (the files stay as
they are):

  - the opening block becomes the file's documentation (`/// @file`), without
    its first line when that line only repeats the path;
  - a block that ends directly above a declaration at namespace or class
    scope becomes that declaration's documentation; blocks followed by a blank
    line (section titles), blocks inside function bodies and blocks above
    preprocessor lines other than #define stay plain comments;
  - a trailing comment on an enumerator, or on a member declaration of a
    class, becomes `///<`;
  - inside the documentation, runs of lines indented by two or more spaces
    that are not list items are fenced as code, and characters Doxygen would
    read as commands or markup (backslash, @, <, >, &, # and % at a word start, a
    dot after a blank at the line's end)
    are escaped, outside `code spans` and "quoted text", which Doxygen shows as
    written.

Usage (INPUT_FILTER): doxygen_filter.py <header>; writes the filtered header
to standard output.
"""
import re
import sys

COMMENT = re.compile(r"^(\s*)//(?!/)(.*)$")
TRAILING = re.compile(r"^(.*?[^\s].*?)(\s+)//(?!/)\s?(.*)$")
SCOPE_OPENER = re.compile(r"\b(namespace|class|struct|union|enum)\b|extern\s+\"C\"")


class ProseEscaper:
    """Escapes Doxygen command and markup characters outside `code spans` and
    "quoted text" (Doxygen shows both as written). A quote or span may run
    over several lines of a paragraph, so the state carries from one line to
    the next until a blank line."""

    def __init__(self):
        self.closing = None  # the character that ends the current span, if any

    def reset(self):
        self.closing = None

    def escape(self, text):
        out = []
        previous = " "
        for char in text:
            if self.closing is not None:
                out.append(char)
                if char == self.closing:
                    self.closing = None
            elif char in '"`':
                out.append(char)
                self.closing = char
            elif char in "\\@<>&" or (char in "#%" and previous.isspace()):
                out.append("\\" + char)
            else:
                out.append(char)
            previous = char
        line = "".join(out)
        if self.closing is None:
            # A dot after a blank at the line's end would close a list.
            line = re.sub(r"(\s)(\.+)$", lambda m: m.group(1) + "\\." * len(m.group(2)), line)
        return line


def comment_text(line):
    """The text of a `//` comment line, without the marker and one blank."""
    body = COMMENT.match(line).group(2)
    return body[1:] if body.startswith(" ") else body


def render_block(texts, indent):
    """Doxygen `///` lines for the texts of one comment block."""
    out = []
    prose = ProseEscaper()
    in_code = False
    in_list = False
    for text in texts:
        stripped = text.strip()
        leading = len(text) - len(text.lstrip(" "))
        is_item = re.match(r"([-*+]|\d+[.)])\s", stripped) is not None
        if not stripped:
            if in_code:
                out.append("```")
                in_code = False
            in_list = False
            prose.reset()
            out.append("")
            continue
        if leading == 0:
            if in_code:
                out.append("```")
                in_code = False
            in_list = is_item
            out.append(prose.escape(text))
            continue
        if is_item or (in_list and not in_code):
            in_list = True
            out.append(prose.escape(text))
            continue
        if not in_code:
            out.append("```")
            in_code = True
            prose.reset()
        out.append(text)
    if in_code:
        out.append("```")
    return [indent + ("/// " + t if t else "///") for t in out]


def strip_code(line):
    """The code of a line without string and character literals or comments."""
    line = re.sub(r'"(\\.|[^"\\])*"', '""', line)
    line = re.sub(r"'(\\.|[^'\\])*'", "''", line)
    return line.split("//", 1)[0]


def documentable(code_line):
    """Whether a `///` block directly above this line documents it."""
    stripped = code_line.strip()
    if not stripped:
        return False
    if stripped.startswith("#"):
        return stripped.startswith("#define")
    if re.match(r"(public|protected|private)\s*:", stripped):
        return False
    return not stripped.startswith("}")


def filter_header(lines):
    out = []
    index = 0
    # The opening block: the file's documentation.
    opening = []
    while index < len(lines) and COMMENT.match(lines[index]):
        opening.append(comment_text(lines[index]))
        index += 1
    if opening:
        if re.fullmatch(r"\S+\.(h|hpp)", opening[0].strip()):
            opening = opening[1:]
            while opening and not opening[0].strip():
                opening = opening[1:]
        out.append("/// @file")
        out.extend(render_block(opening, ""))

    kinds = []        # per open brace: namespace, class, struct, union, enum, extern or body
    statement = ""    # code since the last ; { or }, to classify a brace
    pending = []      # the comment lines of the current block
    while index < len(lines):
        line = lines[index]
        index += 1
        if COMMENT.match(line):
            pending.append(line)
            continue
        at_scope = "body" not in kinds
        if pending:
            if at_scope and documentable(line):
                indent = COMMENT.match(pending[0]).group(1)
                out.extend(render_block([comment_text(p) for p in pending], indent))
            else:
                out.extend(pending)
            pending = []

        code = strip_code(line)
        trailing = TRAILING.match(line)
        if trailing and at_scope and kinds and code.strip() \
                and strip_code(trailing.group(1)) == trailing.group(1):
            declaration = trailing.group(1).rstrip()
            if kinds[-1] == "enum" or (kinds[-1] in ("class", "struct", "union")
                                       and declaration.endswith(";")):
                line = (trailing.group(1) + trailing.group(2) + "///< "
                        + ProseEscaper().escape(trailing.group(3)))
        out.append(line)
        if line.lstrip().startswith("#"):
            continue  # preprocessor lines neither open scopes nor join statements

        for char in code:
            if char == "{":
                opener = SCOPE_OPENER.search(statement)
                if opener is None or "=" in statement or "(" in statement[:opener.start()]:
                    kinds.append("body")
                else:
                    kinds.append(opener.group(1) or "extern")
                statement = ""
            elif char == "}":
                if kinds:
                    kinds.pop()
                statement = ""
            elif char == ";":
                statement = ""
            else:
                statement += char
        statement += " "
    out.extend(pending)
    return out


def main():
    with open(sys.argv[1], encoding="utf-8") as handle:
        lines = handle.read().split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    sys.stdout.write("\n".join(filter_header(lines)) + "\n")


if __name__ == "__main__":
    main()
