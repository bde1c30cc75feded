"""The class diagram: what is in it, and that nothing lies upon anything else."""
import os
import random
import re
import unittest
import xml.etree.ElementTree as xml

import chromium
import harness
import objectfile as of
from harness import GOOD, data

SVG = "{http://www.w3.org/2000/svg}"


def drawn_schema(classes, seed):
    """A schema of a family with several levels, quantities, and pointers that go anywhere."""
    draw = random.Random(seed)
    schema = of.Schema()
    entity = schema.add("Entity", (), [("name", of.STRING)], abstract=True)
    quantity = schema.add("Quantity", (), [("value", of.DOUBLE)])
    length = schema.add("Length", (quantity,))
    for number in range(classes - 3):
        others = [entity] + list(range(length + 1, len(schema.classes) + 1))
        parents = draw.sample(others, min(len(others), draw.choice((0, 1, 1, 1, 1, 2))))
        fields = [(f"field{i}", draw.choice((of.INT, of.DOUBLE, of.STRING, of.DOUBLES))) for i in range(draw.randrange(6))]
        fields += [(f"size{i}", of.MEMBER, length) for i in range(draw.randrange(3))]
        fields += [(f"to{i}", draw.choice((of.OWNED_LIST, of.REFERENCE, of.OWNED_MAP)), draw.choice(others + [len(schema.classes) + 1]))
                   for i in range(draw.randrange(3))]
        schema.add(draw.choice(("Beam", "ReinforcedConcreteColumnOfSteel", "Wall<b>", "Laje")) + str(number), parents, fields)
    return of.whole(schema, [])


class Box:
    def __init__(self, group):
        rect = group.find(SVG + "rect")
        self.left, self.top, self.width, self.height = (float(rect.get(one)) for one in ("x", "y", "width", "height"))
        self.right, self.bottom = self.left + self.width, self.top + self.height
        self.texts = ["".join(one.itertext()) for one in group.iter(SVG + "text")]

    def meets(self, x1, y1, x2, y2):
        """Whether what lies between two points is inside, more than on the border."""
        return x1 < self.right - 1 and x2 > self.left + 1 and y1 < self.bottom - 1 and y2 > self.top + 1


def pieces(path):
    """The straight pieces of a line, each with its lesser ends first."""
    for x, y, way, end in re.findall(r"M(\S+) (\S+?)([HV])([^MHV]+)", path):
        x, y, end = float(x), float(y), float(end)
        yield (min(x, end), y, max(x, end), y) if way == "H" else (x, min(y, end), x, max(y, end))


class Diagram(harness.ToolTest):
    def draw(self, file):
        out = os.path.join(self.folder, "classes.svg")
        self.expect(GOOD, "schema", file, "--svg", out)
        picture = xml.parse(out).getroot().find(SVG + "g")
        boxes = [Box(one) for one in picture.iter(SVG + "g") if one.find(SVG + "rect") is not None]
        lines = [list(pieces(one.get("d"))) for one in picture.iter(SVG + "path") if one.get("class").split()[0] == "l"]
        return boxes, lines

    def expect_clear(self, boxes, lines):
        for index, box in enumerate(boxes):
            for other in boxes[:index]:
                self.assertFalse(box.meets(other.left, other.top, other.right, other.bottom), (box.texts, other.texts))
            for line in lines:
                self.assertFalse(any(box.meets(*piece) for piece in line), box.texts)
        for index, line in enumerate(lines):
            for other in lines[:index]:
                for a in line:
                    for b in other:
                        level = a[1] == a[3] == b[1] == b[3] and min(a[2], b[2]) - max(a[0], b[0]) > 0.5
                        upright = a[0] == a[2] == b[0] == b[2] and min(a[3], b[3]) - max(a[1], b[1]) > 0.5
                        self.assertFalse(level or upright, (a, b))

    def test_the_frame(self):
        boxes, lines = self.draw(data("frame9-version4.zo"))
        self.expect_clear(boxes, lines)
        by_name = {box.texts[0]: box for box in boxes}
        self.assertEqual(by_name["Section"].texts, ["Section", "depth", "GComprimento", "area", "GArea", "inertia", "GInercia",
                                                    "material", "Material", "catalogue", "Catalogue"])
        for child, parent in (("Girder", "Member"), ("Member", "Entity"), ("GArea", "Grandeza")):
            self.assertGreater(by_name[child].top, by_name[parent].bottom)
        ends = lambda box: [piece for line in lines for piece in line if piece[3] == box.top and piece[0] == piece[2]
                            and box.left < piece[0] < box.right]
        self.assertEqual(len(ends(by_name["Girder"])), 1)
        self.assertEqual(len(ends(by_name["Entity"])), 0)

    def test_drawn_schemas(self):
        for classes, seed in ((4, 1), (5, 2), (12, 3), (40, 4), (80, 5), (120, 6)):
            with self.subTest(classes=classes):
                boxes, lines = self.draw(self.file("drawn.zo", drawn_schema(classes, seed)))
                self.assertEqual(len(boxes), classes)
                self.expect_clear(boxes, lines)

    def test_extremes(self):
        none, wide, many = of.Schema(), of.Schema(), of.Schema()
        wide.add("W" * 500, (), [("x" * 300, of.REFERENCE, 1)] + [(f"field{i}", of.INT) for i in range(60)])
        for number in range(1, 3001):
            many.add(f"C{number}", (number - 1,) if number % 900 != 1 else (), [("next", of.REFERENCE, number % 3000 + 1)])
        for schema, classes in ((none, 0), (wide, 1), (many, 3000)):
            with self.subTest(classes=classes):
                boxes, _ = self.draw(self.file("x.zo", of.whole(schema, [])))
                self.assertEqual(len(boxes), classes)
        self.assertIn("and 31 more", self.draw(self.file("x.zo", of.whole(wide, [])))[0][0].texts)

    @unittest.skipUnless(chromium.find(), "there is no Chromium")
    def test_texts_stay_in_their_boxes(self):
        out = os.path.join(self.folder, "classes.svg")
        with chromium.Chromium() as browser:
            for file in (data("frame9-version4.zo"), data("every-kind.zo"), self.file("drawn.zo", drawn_schema(40, 7))):
                self.expect(GOOD, "schema", file, "--svg", out)
                browser.open(out)
                self.assertEqual(browser.console, [])
                self.assertEqual(browser.run("""[...document.querySelectorAll('g > g:has(rect)')].flatMap(group => {
                    const box = group.querySelector('rect').getBBox();
                    const texts = [...group.querySelectorAll('text')].map(text => [text.getBBox(), text.textContent]);
                    const outside = ([one]) => one.x < box.x + 4 || one.x + one.width > box.x + box.width - 4;
                    const meets = ([a], [b]) => a.x < b.x + b.width && b.x < a.x + a.width && Math.abs(a.y - b.y) < 10;
                    return texts.filter((one, i) => outside(one) || texts.some((other, k) => k < i && meets(one, other))).map(one => one[1]);
                })"""), [])


if __name__ == "__main__":
    harness.main()
