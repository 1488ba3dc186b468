#!/usr/bin/env python3
"""Checks Vorkam's user manual as it lies in the program's folder.

Every internal link leads to a page and anchor that exist, every picture exists, every page is
reached from the contents, and every command of the main window's menus is described somewhere.
Usage: manual_check.py MANUAL_FOLDER MAIN_WINDOW_UI
"""
import html.parser
import os
import re
import sys
import urllib.parse

folder, main_ui = sys.argv[1], sys.argv[2]


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.ids, self.links, self.pictures, self.text = set(), [], [], []

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        if 'id' in a:
            self.ids.add(a['id'])
        if tag == 'a' and 'name' in a:
            self.ids.add(a['name'])
        if tag in ('a', 'link') and 'href' in a:
            self.links.append(a['href'])
        if tag == 'img':
            self.pictures.append(a.get('src', ''))

    def handle_data(self, data):
        self.text.append(data)


pages = {}
for name in sorted(os.listdir(folder)):
    if name.endswith('.html'):
        p = Page()
        p.feed(open(os.path.join(folder, name), encoding='utf-8').read())
        pages[name] = p

problems = []
reached = {'index.html'}
for name, page in pages.items():
    for href in page.links:
        url = urllib.parse.urlsplit(href)
        if url.scheme or url.netloc:
            continue  # a link out of the manual opens in the browser
        target = urllib.parse.unquote(url.path) or name
        if not os.path.exists(os.path.join(folder, target)):
            problems.append('%s: link to a missing file %s' % (name, href))
            continue
        reached.add(target)
        if url.fragment and target in pages and url.fragment not in pages[target].ids:
            problems.append('%s: link to a missing anchor %s' % (name, href))
    for src in page.pictures:
        if not src or not os.path.isfile(os.path.join(folder, urllib.parse.unquote(src))):
            problems.append('%s: missing picture %r' % (name, src))
for name in pages:
    if name not in reached:
        problems.append('%s: no page links to it' % name)

# Every command of the main window's menus is described in the manual.
words = re.sub(r'\s+', ' ', ' '.join(t for p in pages.values() for t in p.text)).lower()
ui = open(main_ui, encoding='utf-8').read()
for action, label in re.findall(r'<action name="(\w+)">.*?<string>([^<]+)</string>', ui, re.S):
    label = label.replace('&amp;', '').replace('&', '').replace('...', '').replace('…', '').strip()
    if label.lower() not in words:
        problems.append('the menu command %s ("%s") is not described' % (action, label))

for p in problems:
    print(p)
print('%d pages checked, %d problems' % (len(pages), len(problems)))
sys.exit(1 if problems else 0)
