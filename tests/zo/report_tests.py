"""The report's page, in a headless Chromium where there is one."""
import html.parser
import json
import os
import re
import unittest

import chromium
import harness
import objectfile as of
from harness import GOOD, TROUBLE, contents, data

MARKUP = "</script><script>alert(1)</script><img src=x onerror=alert(2)>"


def hostile():
    """Names and texts that are markup."""
    schema = of.Schema()
    root = schema.add("<script>alert(1)</script>", (), [(MARKUP, of.STRING), ("q'\"&", of.STRINGS)])
    return of.whole(schema, [(root, 1, of.text(MARKUP) + of.integers(1) + of.text("<!-- & <b>"))])


def frame(members=100_000):
    """A model with nodes, members between them, and a chain that ends at the first node."""
    schema = of.Schema()
    entity = schema.add("Entity", (), [("name", of.STRING)], abstract=True)
    node = schema.add("Node", (entity,), [("x", of.DOUBLE), ("next", of.REFERENCE, 2)])
    member = schema.add("Member", (entity,), [("loads", of.DOUBLES), ("start", of.REFERENCE, node)])
    model = schema.add("Model", (entity,), [("nodes", of.OWNED_LIST, node), ("members", of.OWNED_LIST, member)])
    nodes = range(2, 2 + members // 2)
    bars = range(nodes.stop, nodes.stop + members - members // 2 - 1)
    objects = [(model, 1, of.text("Pórtico") + of.uids(nodes) + of.uids(bars))]
    objects += [(node, uid, of.text(f"N{uid}") + of.struct.pack("<di", 1.5 * uid, uid - 1 if uid > 2 else 0)) for uid in nodes]
    objects += [(member, uid, of.text(f"V{uid}") + of.integers(1) + of.struct.pack("<di", uid % 7, 2 + uid % 100)) for uid in bars]
    return of.whole(schema, objects)


class Page(html.parser.HTMLParser):
    """The tags of a page, and the JSON in it."""

    def __init__(self, text):
        super().__init__()
        self.tags, self.json, self.inside = [], {"data": "", "translations": ""}, None
        self.feed(text)
        self.data, self.translations = (json.loads(text) for text in self.json.values())

    def handle_starttag(self, tag, attributes):
        self.tags.append(tag)
        self.inside = dict(attributes).get("id")
        if tag == "html":
            self.language = dict(attributes)["lang"]

    def handle_data(self, text):
        if self.inside in self.json:
            self.json[self.inside] += text

    def handle_endtag(self, tag):
        self.inside = None


class Report(harness.ToolTest):
    def report(self, file, *words, code=GOOD, says=()):
        out = os.path.join(self.folder, "page.html")
        self.expect(code, "report", *words, file, "-o", out, says=says)
        return out

    def page(self, *words, **how):
        with open(self.report(*words, **how), encoding="utf-8") as file:
            return Page(file.read())


class Data(Report):
    def test_values_of_every_kind(self):
        data_of = self.page(data("every-kind.zo")).data
        fields = [name for name, kind, of_class in data_of["classes"][data_of["objects"]["class"][0]]["fields"]]
        values = dict(zip(fields, data_of["objects"]["values"][0]))
        values["aString"] = data_of["strings"][values["aString"]]
        values["strings"] = [data_of["strings"][one] for one in values["strings"]]
        self.assertEqual({name: values[name] for name in (
            "map", "anInt", "aFloat", "aDouble", "aString", "aBlob", "aBool", "ints", "strings", "anUnsigned", "child")},
            {"map": [[2], [3]], "anInt": -2, "aFloat": 1.5, "aDouble": -0.25, "aString": "text", "aBlob": [2, "0102"],
             "aBool": 1, "ints": [7, -8], "strings": ["a", ""], "anUnsigned": 4000000000, "child": 4})
        self.assertEqual(sum(data_of["map"]["lengths"]), len(contents("every-kind.zo")))

    def test_what_a_file_says_is_no_markup(self):
        page = self.page(self.file("hostile.zo", hostile()))
        self.assertEqual(page.tags.count("script"), 3)
        self.assertNotIn("img", page.tags)
        self.assertEqual(page.data["strings"], [MARKUP, "<!-- & <b>"])
        self.assertEqual(page.data["classes"][0]["name"], "<script>alert(1)</script>")

    def test_every_byte_of_a_damaged_file_is_in_the_map(self):
        good = contents("frame9-version4.zo")
        third = of.frames(good)[2]
        for what, bad in {
            "torn": good[:20000], "no schema": good[:300], "header alone": good[:28],
            "flipped": good[:third[0] + 30] + b"\xFF" + good[third[0] + 31:], "strayed": good[:third[0]] + b"?" * 99 + good[third[0]:],
        }.items():
            with self.subTest(what):
                parts = self.page(self.file("bad.zo", bad)).data["map"]
                self.assertEqual(sum(parts["lengths"]), len(bad))
                self.assertEqual(what == "header alone", all(part not in (-3, -4) for part in parts["what"]))

    def test_findings(self):
        for name, faults in {
            "whole": [], "flipped-byte": ["Wrong checksum", "Wrong digest", "Pointer to nothing"], "missing": ["Wrong digest", "Pointer to nothing"],
            "wrong-reference": ["Pointer to nothing", "Pointer to another class"], "schema": ["Schema", "Wrong checksum", "Wrong digest"],
        }.items():
            with self.subTest(name):
                findings = self.page(data(f"damaged/{name}.zo")).data["findings"]
                self.assertEqual(sorted(kind for kind, count, fault in findings["kinds"].values() if fault), sorted(faults))
                self.assertEqual(len(findings["rows"]), findings["faults"] + findings["notes"])
                wrong = [(offset, uid) for _, kind, offset, _, uid, _, _ in findings["rows"]
                         if findings["kinds"][str(kind)][0] == "Wrong checksum" and name != "schema"]
                self.assertEqual(wrong, [(6672, 22)] if name == "flipped-byte" else [])

    def test_texts_have_translations(self):
        with open(os.path.join(harness.DATA, "..", "..", "tools", "zo", "po", "zo.pot"), encoding="utf-8") as template:
            texts = set(re.findall(r'^msgid "(.+)"$', template.read(), re.M))
        for language, objects, class_name in (("en-US", "{} objects", "Unknown class"), ("pt-BR", "{} objetos", "Classe desconhecida"),
                                              ("es-MX", "{} objetos", "Clase desconocida")):
            with self.subTest(language):
                page = self.page(self.file("unknown.zo", of.whole(of.Schema(), [(7, 1, b"")])), "--language", language)
                self.assertEqual(page.language, language)
                self.assertEqual(page.translations["{} objects"], objects)
                self.assertEqual(set(page.translations) - texts, set())
                self.assertIn(class_name, [name for name, _, _ in page.data["findings"]["kinds"].values()])

    def test_limits_are_told(self):
        self.page(data("frame9.zo"), "--objects", 50, says="the first 50 of 212 objects")
        self.page(data("frame9.zo"), "--objects", 50, "--language", "pt-BR", says="os primeiros 50 de 212 objetos")

    def test_slips(self):
        for words, says in (([data("frame9.zo"), "-o", data("frame9.zo")], "would replace a file that is read"),
                            ([data("frame9.zo"), "-o", os.path.join(self.folder, "none", "x.html")], "cannot be written"),
                            (["none.zo", "-o", os.path.join(self.folder, "x.html")], "there is no such file"),
                            ([data("README.md"), "-o", os.path.join(self.folder, "x.html")], "it is no object file")):
            with self.subTest(says):
                self.expect(TROUBLE, "report", *words, says=says)
        self.assertEqual(os.listdir(self.folder), [])


@unittest.skipUnless(chromium.find(), "there is no Chromium")
class InBrowser(Report):
    @classmethod
    def setUpClass(cls):
        cls.browser = chromium.Chromium()
        cls.addClassCleanup(cls.browser.close)

    def browse(self, file, dark=False, language="en-US"):
        self.browser.set_dark(dark)
        self.browser.open(self.report(file, "--language", language))
        return self.browser

    def text(self, browser, name):
        return browser.run(f"document.getElementById('{name}').textContent")

    def expect_quiet(self, browser):
        self.assertEqual(browser.console, [])
        self.assertEqual([one for one in browser.requests if not one.startswith(("file:", "data:"))], [])
        self.assertEqual(sum(one.startswith("file:") for one in browser.requests), 1)

    def test_opens_in_silence(self):
        good = contents("frame9-version4.zo")
        for what, file in {"good": good, "markup": hostile(), "torn": good[:20000], "no schema": good[:300],
                           "header alone": good[:28], "every kind": contents("every-kind.zo"),
                           "no object": of.whole(of.Schema(), [])}.items():
            for dark, language in ((False, "en-US"), (True, "pt-BR"), (False, "es-MX")):
                with self.subTest(what, dark=dark, language=language):
                    browser = self.browse(self.file(f"{what}.zo", file), dark, language)
                    self.assertEqual(self.text(browser, "title"), f"{what}.zo")
                    self.assertEqual(browser.run("document.documentElement.dataset.theme"), "dark" if dark else "light")
                    browser.run("document.querySelectorAll('section').forEach(one => one.scrollIntoView())")
                    self.expect_quiet(browser)

    def test_no_text_stays_english(self):
        for file in (data("damaged/several.zo"), data("every-kind.zo"), self.file("hostile.zo", hostile()), self.file("none.zo", of.whole(of.Schema(), []))):
            english = self.texts(self.browse(file))
            self.assertGreater(len(english), 40)
            for language in ("pt-BR", "es-MX"):
                with self.subTest(file, language=language):
                    self.assertEqual(english & self.texts(self.browse(file, language=language)), set())

    ALIKE = set("byte bytes Bytes Uid Classes classes Enter Esc Home End Page Up Down Alt int float double string blob bool unsigned true null".split())

    def texts(self, browser):
        """What the page says, without numbers and what the file or every language says."""
        told, held = browser.run("""(() => {
            const texts = [];
            const walk = document.createTreeWalker(document.documentElement, NodeFilter.SHOW_TEXT,
                node => node.parentElement.closest('script, style, pre') ? NodeFilter.FILTER_REJECT : NodeFilter.FILTER_ACCEPT);
            while (walk.nextNode()) texts.push(walk.currentNode.data);
            for (const name of ['aria-label', 'title', 'placeholder', 'aria-valuetext']) {
                for (const one of document.querySelectorAll(`[${name}]`)) texts.push(one.getAttribute(name));
            }
            const { strings, classes, file, tool } = JSON.parse(document.getElementById('data').textContent);
            return [texts, JSON.stringify([strings, classes, file.name, tool])];
        })()""")
        words = lambda text: re.findall(r"[^\W\d_]+", text)
        held = self.ALIKE | set(words(held))
        return {" ".join(word for word in words(text) if word not in held) for text in told} - {""}

    def test_numbers_are_those_of_the_language(self):
        for language, objects, few, value in (("en-US", "1,200 objects", "599 of 1,200 objects", "4.5"),
                                              ("pt-BR", "1.200 objetos", "599 de 1.200 objetos", "4,5"), ("es-MX", "1,200 objetos", "599 de 1,200 objetos", "4.5")):
            with self.subTest(language):
                browser = self.browse(self.file("small.zo", frame(1200)), language=language)
                self.assertEqual(self.text(browser, "objects-count"), objects)
                browser.press("/", "x>=" + value, "Enter")
                self.assertEqual(self.text(browser, "objects-count"), few)
                self.assertIn(f"x {value}", self.text(browser, "grid"))

    def test_a_hundred_thousand_objects(self):
        browser = self.browse(self.file("big.zo", frame()))
        elements = lambda: browser.run("document.querySelectorAll('*').length")
        self.assertLess(elements(), 1500)
        browser.press("/", "n40000")
        browser.wait("document.getElementById('objects-count').textContent === '1 of 100,000 objects'")
        browser.press("Enter")
        self.assertIn("Node 40000 “N40000”", self.text(browser, "detail"))
        browser.press("/", "x>=74998.5", "Enter")  # what was sought is selected, and gives way
        self.assertEqual(self.text(browser, "objects-count"), "3 of 100,000 objects")
        browser.press("/", " ", "Enter", "End")
        self.assertIn("Member 100000", self.text(browser, "detail"))
        self.assertIn("V100000", self.text(browser, "grid"))
        self.assertLess(elements(), 1500)
        self.expect_quiet(browser)

    def test_links_lead_there_and_back(self):
        browser = self.browse(self.file("small.zo", frame(300)))
        browser.run("location.hash = 'o200'")
        browser.wait("document.getElementById('detail').textContent.includes('Member 200')")
        browser.click("#detail table a[href='#o2']")
        browser.wait("document.getElementById('detail-title').textContent.startsWith('Node 2 ')")
        self.assertIn("4 pointers to it", self.text(browser, "detail"))  # the model, node 3, members 200 and 300
        browser.run("history.back()")
        browser.wait("document.getElementById('detail-title').textContent.startsWith('Member 200')")
        browser.click("#detail .trail a")
        browser.wait("document.getElementById('detail-title').textContent.startsWith('Model 1 ')")
        browser.click("#detail .where a")
        browser.wait("document.getElementById('bytes-place').textContent.includes('Model 1,')")

    def test_findings_lead_to_their_places(self):
        browser = self.browse(data("damaged/several.zo"))
        self.assertIn("33 faults", self.text(browser, "verdict"))
        browser.click("#findings-list a[href='#b6672']")
        browser.wait("document.getElementById('bytes-place').textContent.includes('damaged record')")
        kind = browser.run("[...document.querySelectorAll('#findings-kind option')].find(one => one.textContent.startsWith('Pointer to nothing')).value")
        browser.run(f"(() => {{ const s = document.getElementById('findings-kind'); s.value = {kind}; s.dispatchEvent(new Event('change')); }})()")
        browser.click("#findings-list a[href='#o1']")
        browser.wait("document.getElementById('detail').textContent.includes('22 (no such object)')")

    def test_a_keyboard_suffices(self):
        browser = self.browse(self.file("small.zo", frame(300)))
        active = lambda: browser.run("document.activeElement.id || document.activeElement.getAttribute('href')")
        reached = []
        for _ in range(60):
            browser.press("Tab")
            reached.append(active())
        for stop in ("theme", "map", "drawing", "search", "objects-class", "grid"):
            self.assertIn(stop, reached)
        browser.press("/", "V200", "ArrowDown")
        self.assertEqual(active(), "grid")
        browser.press("Enter")
        self.assertEqual(active(), "detail-title")
        while active() != "#o2":
            browser.press("Tab")
        browser.press("Enter")
        # Not the link, which has that name, too.
        browser.wait("document.activeElement.id === 'detail-title' && document.activeElement.textContent.startsWith('Node 2 ')")
        browser.press("Escape")
        self.assertEqual(active(), "grid")
        browser.run("document.getElementById('map').focus()")
        browser.press("Home", "ArrowRight", "ArrowRight", "Enter")  # header, schema, the model
        browser.wait("document.activeElement.textContent.startsWith('Model 1 ')")

    def test_everything_has_a_name_and_contrast(self):
        for dark in (False, True):
            with self.subTest(dark=dark):
                browser = self.browse(data("frame9-version4.zo"), dark=dark)
                nameless = [one["role"]["value"] for one in browser.ask("Accessibility.getFullAXTree")["nodes"]
                            if one.get("role", {}).get("value") in ("button", "link", "textbox", "searchbox", "combobox", "slider", "grid", "table",
                                                                    "region", "article", "image")
                            and not one["ignored"] and not one.get("name", {}).get("value")]
                self.assertEqual(nameless, [])
                ratios = browser.run("""(() => {
                    const light = name => {
                        const p = document.createElement('canvas').getContext('2d');
                        p.fillStyle = getComputedStyle(document.documentElement).getPropertyValue('--' + name);
                        p.fillRect(0, 0, 1, 1);
                        const [r, g, b] = [...p.getImageData(0, 0, 1, 1).data].map(v => (v /= 255) <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4);
                        return 0.2126 * r + 0.7152 * g + 0.0722 * b;
                    };
                    const found = {};
                    for (const text of ['ink', 'muted', 'link', 'fault', 'good']) for (const back of ['paper', 'sheet', 'chosen', 'hover']) {
                        const [a, b] = [light(text), light(back)].sort();
                        found[text + ' on ' + back] = (b + 0.05) / (a + 0.05);
                    }
                    return found;
                })()""")
                self.assertEqual({pair: ratio for pair, ratio in ratios.items() if ratio < 4.5}, {})


if __name__ == "__main__":
    harness.main()
