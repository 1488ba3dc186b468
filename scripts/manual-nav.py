#!/usr/bin/env python3
"""Numbers the chapters of Vorkam's user manual and links them in order.

The order is the table of contents in docs/kayttoohje/index.html: one top-level item per chapter
page. For every page the script writes the chapter and section numbers into the <h2>/<h3>
headings, the "previous / next" bars (<nav class="selaus">) and every link whose text is only a
chapter or section number ("luku <a href="asetukset.html">9</a>"), so that a chapter can be
added or moved by editing the contents alone. Reports links to missing pages or anchors.
Usage: scripts/manual-nav.py [docs/kayttoohje]
"""
import os
import re
import sys

folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), '..', 'docs', 'kayttoohje')
index_path = os.path.join(folder, 'index.html')
index = open(index_path, encoding='utf-8').read()
toc = re.search(r'<nav class="sisallys".*?</nav>', index, re.S).group(0)
chapters = re.findall(r'^  <li><a href="([^"#]+\.html)">([^<]+)</a>', toc, re.M)

numbers = {}  # (page, anchor or '') -> number text
pages = {}
for n, (page, _) in enumerate(chapters, 1):
    text = open(os.path.join(folder, page), encoding='utf-8').read()

    def h2(m, n=n):
        return '%s%d. %s</h2>' % (m.group(1), n, m.group(3))
    text = re.sub(r'(<h2>)(\d+\. )?([^<]*)</h2>', h2, text, count=1)
    sub = [0]

    def h3(m, n=n):
        sub[0] += 1
        return '%s%d.%d %s</h3>' % (m.group(1), n, sub[0], m.group(3))
    text = re.sub(r'(<h3>)(\d+\.\d+ )?([^<]*)</h3>', h3, text)
    numbers[(page, '')] = str(n)
    first = re.search(r'<section id="([^"]+)">', text)
    if first:
        numbers[(page, first.group(1))] = str(n)
    for m in re.finditer(r'<section id="([^"]+)">\s*<h3>(\d+\.\d+) ', text):
        numbers[(page, m.group(1))] = m.group(2)
    pages[page] = text

titles = {page: re.search(r'<h2>([^<]*)</h2>', pages[page]).group(1) for page, _ in chapters}
problems = []
for i, (page, _) in enumerate(chapters):
    links = ['<a href="index.html">Sisällys</a>']
    if i > 0:
        prev = chapters[i - 1][0]
        links.append('<a href="%s" rel="prev">← %s</a>' % (prev, titles[prev]))
    if i + 1 < len(chapters):
        nxt = chapters[i + 1][0]
        links.append('<a href="%s" rel="next">%s →</a>' % (nxt, titles[nxt]))
    bar = '<nav class="selaus">' + ' · '.join(links) + '</nav>'
    text = re.sub(r'<nav class="selaus">.*?</nav>', bar, pages[page], flags=re.S)
    text = re.sub(r'<title>[^<]*</title>', '<title>%s – Vorkamin käyttöohje</title>' % titles[page], text, count=1)
    pages[page] = text

ids = {page: set(re.findall(r'id="([^"]+)"', text)) for page, text in pages.items()}
ids['index.html'] = set(re.findall(r'id="([^"]+)"', index))


def renumber(text, own):
    def fix(m):
        target, label = m.group(1), m.group(2)
        page, _, anchor = target.partition('#')
        page = page or own
        if not page.endswith('.html') or '/' in page or ':' in page:
            return m.group(0)
        if page not in ids:
            problems.append('%s: link to a missing page %s' % (own, target))
            return m.group(0)
        if anchor and anchor not in ids[page]:
            problems.append('%s: link to a missing anchor %s' % (own, target))
        if re.fullmatch(r'\d+(\.\d+)?', label) and (page, anchor) in numbers:
            label = numbers[(page, anchor)]
        return '<a href="%s">%s</a>' % (target, label)
    return re.sub(r'<a href="([^"]+)">([^<]*)</a>', fix, text)


for page in pages:
    pages[page] = renumber(pages[page], page)
    open(os.path.join(folder, page), 'w', encoding='utf-8').write(pages[page])
open(index_path, 'w', encoding='utf-8').write(renumber(index, 'index.html'))
for p in problems:
    print(p, file=sys.stderr)
print('%d lukua numeroitu' % len(chapters))
sys.exit(1 if problems else 0)
