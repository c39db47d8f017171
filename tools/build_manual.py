#!/usr/bin/python3
"""Makes one self-contained HTML page of the manual.

    build_manual.py docs/manual.md manual.html

Understands what the manual uses of Markdown: headings, paragraphs, lists, tables, indented code,
quotes, images on a line of their own, and in a line `code`, **strong**, *emphasis* and [links](#x).
Pictures are embedded in the page; one that does not exist yet is left out. A link to a heading that does
not exist is an error. The same manual always gives the same bytes.
"""

import base64
import html
import pathlib
import re
import sys

STYLE = """
:root { --paper: #fdfdfb; --ink: #22252a; --faint: #5d636b; --line: #d9dbd6; --accent: #7a4a12;
        --soft: #f1f1ec; --key: #fff; }
@media (prefers-color-scheme: dark) {
  :root { --paper: #1d1f22; --ink: #e3e4e2; --faint: #a0a5ab; --line: #3b3f44; --accent: #e0b071;
          --soft: #27292d; --key: #303338; } }
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 1rem; }
body { margin: 0; background: var(--paper); color: var(--ink);
       font: 1.0625rem/1.6 "Liberation Sans", Arial, Helvetica, sans-serif; }
.page { display: grid; grid-template-columns: 17rem minmax(0, 46rem); gap: 3.5rem;
        max-width: 70rem; margin: 0 auto; padding: 0 1.5rem; }
nav { position: sticky; top: 0; max-height: 100vh; overflow-y: auto; padding: 2.5rem 0; font-size: .9rem; }
nav ul { list-style: none; margin: 0; padding: 0; }
nav ul ul { padding-left: .9rem; font-size: .94em; }
nav li { margin: .25rem 0; }
nav a { color: var(--faint); text-decoration: none; }
nav a:hover, nav a:focus { color: var(--accent); text-decoration: underline; }
main { padding: 2.5rem 0 6rem; }
h1, h2, h3 { line-height: 1.25; font-weight: 600; }
h1 { font-size: 2.2rem; margin: 0 0 1.5rem; }
h2 { font-size: 1.55rem; margin: 3.2rem 0 1rem; padding-top: 1.2rem; border-top: 1px solid var(--line); }
h3 { font-size: 1.15rem; margin: 2rem 0 .6rem; }
a { color: var(--accent); }
li { margin: .3rem 0; }
code { font: .92em/1.4 "Liberation Mono", "DejaVu Sans Mono", monospace; padding: .08em .35em;
       border: 1px solid var(--line); border-radius: 4px; background: var(--key); }
pre { background: var(--soft); border-radius: 6px; padding: .9rem 1.1rem; overflow-x: auto; }
pre code { border: 0; padding: 0; background: none; }
blockquote { margin: 1rem 0; padding: .5rem 1.1rem; background: var(--soft);
             border-left: 4px solid var(--accent); border-radius: 0 6px 6px 0; }
blockquote p { margin: .3rem 0; }
.table { overflow-x: auto; margin: 1rem 0; }
table { border-collapse: collapse; font-size: .95em; }
th, td { text-align: left; vertical-align: top; padding: .4rem .9rem .4rem 0;
         border-bottom: 1px solid var(--line); }
th { color: var(--faint); font-weight: 600; }
figure { margin: 1.6rem 0; }
figure img { max-width: 100%; border: 1px solid var(--line); border-radius: 6px; }
figcaption { color: var(--faint); font-size: .9rem; }
@media (max-width: 60rem) { .page { display: block; }
  nav { position: static; max-height: none; padding: 1.5rem 0 0; } main { padding-top: 1rem; } }
@media print { nav { display: none; } .page { display: block; } body { font-size: 10pt; } }
"""


def slug(heading):
    """The anchor of a heading: small letters and digits, blanks as hyphens."""
    words = re.sub(r"[^\w\s-]", "", heading.lower())
    return re.sub(r"\s", "-", words.strip())


class Page:
    def __init__(self, folder):
        self.folder = folder
        self.body = []
        self.headings = []  # level, text, anchor
        self.links = set()

    def inline(self, text):
        """One line's marks. Code is set aside first, as nothing in it is a mark."""
        codes = []

        def keep(match):
            codes.append(html.escape(match[1]))
            return f"\0{len(codes) - 1}\0"

        text = html.escape(re.sub(r"`` ?(.+?) ?``|`([^`]+)`", lambda m: keep([None, m[1] or m[2]]), text),
                           quote=False)
        text = re.sub(r"\[([^\]]+)\]\(([^)\s]+)\)", self.link, text)
        text = re.sub(r"\*\*(.+?)\*\*", r"<strong>\1</strong>", text)
        text = re.sub(r"\*(\S(?:.*?\S)?)\*", r"<em>\1</em>", text)
        return re.sub("\0(\\d+)\0", lambda m: f"<code>{codes[int(m[1])]}</code>", text)

    def link(self, match):
        if match[2].startswith("#"):
            self.links.add(match[2][1:])
        return f'<a href="{match[2]}">{match[1]}</a>'

    def heading(self, level, text):
        anchor = slug(text)
        if anchor in (taken for _, _, taken in self.headings):
            raise SystemExit(f"two headings '{text}'")
        self.headings.append((level, text, anchor))
        self.body.append(f'<h{level} id="{anchor}">{self.inline(text)}</h{level}>')

    def image(self, words, path):
        file = self.folder / path
        if not file.exists():
            return
        data = base64.b64encode(file.read_bytes()).decode()
        self.body.append(f'<figure><img alt="{html.escape(words)}" src="data:image/png;base64,{data}">'
                         f"<figcaption>{self.inline(words)}</figcaption></figure>")

    def table(self, lines):
        cells = [[cell.strip() for cell in line.strip().strip("|").split("|")] for line in lines]
        out = ['<div class="table"><table>', "<thead><tr>"]
        out += [f"<th>{self.inline(cell)}</th>" for cell in cells[0]]
        out.append("</tr></thead><tbody>")
        for row in cells[2:]:
            out.append("<tr>" + "".join(f"<td>{self.inline(cell)}</td>" for cell in row) + "</tr>")
        out.append("</tbody></table></div>")
        self.body.append("\n".join(out))

    def list(self, lines, first):
        """Items, each with the lines that belong to it. `first` is the number of the first, or None."""
        tag = "ul" if first is None else f'ol start="{first}"'
        items = []
        for line in lines:
            mark = re.match(r"(?:-|\d+\.) +(.*)", line)
            if mark:
                items.append(mark[1])
            else:
                items[-1] += " " + line.strip()
        self.body.append(f"<{tag}>" + "".join(f"<li>{self.inline(i)}</li>" for i in items)
                         + f"</{tag.split()[0]}>")

    def block(self, lines):
        first = lines[0]
        heading = re.match(r"(#+) (.*)", first)
        image = re.fullmatch(r"!\[([^\]]*)\]\(([^)]+)\)", first)
        number = re.match(r"(\d+)\. ", first)
        if heading:
            self.heading(len(heading[1]), heading[2])
        elif image:
            self.image(image[1], image[2])
        elif first.startswith("    "):
            code = "\n".join(line[4:] for line in lines)
            self.body.append(f"<pre><code>{html.escape(code)}</code></pre>")
        elif first.startswith("|"):
            self.table(lines)
        elif first.startswith("> "):
            text = " ".join(line[2:] for line in lines)
            self.body.append(f"<blockquote><p>{self.inline(text)}</p></blockquote>")
        elif first.startswith("- ") or number:
            self.list(lines, number and number[1])
        else:
            self.body.append(f"<p>{self.inline(' '.join(lines))}</p>")

    def contents(self):
        out = ["<ul>"]
        inner = False
        for level, text, anchor in self.headings:
            if level == 1:
                continue
            if (level == 3) != inner:
                out.append("<ul>" if level == 3 else "</ul>")
                inner = level == 3
            out.append(f'<li><a href="#{anchor}">{self.inline(text)}</a></li>')
        return "\n".join(out + ["</ul>"] * (1 + inner))

    def html(self):
        missing = self.links - {anchor for _, _, anchor in self.headings}
        if missing:
            raise SystemExit("no heading for " + ", ".join(sorted(missing)))
        title = next(text for level, text, _ in self.headings if level == 1)
        return (f'<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n'
                f'<meta name="viewport" content="width=device-width, initial-scale=1">\n'
                f'<meta name="color-scheme" content="light dark">\n'
                f"<title>{html.escape(title)}</title>\n<style>{STYLE}</style>\n</head>\n<body>\n"
                f'<div class="page">\n<nav aria-label="Contents">\n{self.contents()}\n</nav>\n'
                f"<main>\n" + "\n".join(self.body) + "\n</main>\n</div>\n</body>\n</html>\n")


def blocks(text):
    """The text's blocks as lists of lines: the lines between empty ones. A heading is a block."""
    block = []
    for line in re.sub(r"<!--.*?-->", "", text, flags=re.S).splitlines():
        if line.startswith("#"):
            yield from filter(None, [block])
            yield [line]
            block = []
        elif line.strip():
            block.append(line)
        elif block:
            yield block
            block = []
    if block:
        yield block


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    source = pathlib.Path(sys.argv[1])
    page = Page(source.parent)
    for block in blocks(source.read_text(encoding="utf-8")):
        page.block(block)
    pathlib.Path(sys.argv[2]).write_text(page.html(), encoding="utf-8")


if __name__ == "__main__":
    main()
