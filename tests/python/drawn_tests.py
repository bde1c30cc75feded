"""Drawn schemas and models: what is written is read, and the file tool reads the same without classes."""
import base64
import json
import os
import random
import re
import struct
import subprocess
import unittest

from support import FolderTest, Kind, zo

LISTS = [kind for kind in Kind if kind.is_pointer_list or kind.is_value_list]


def drawn(seed):
    """A model with inheritance, values of every kind and, in half of the cases, integers in its lists."""
    draw = random.Random(seed)
    schema = zo.Schema()
    shapes = {}
    for number in range(draw.randint(1, 5)):
        name = f"C{number}"
        fields = [(f"f{number}_{i}", kind, draw.choice([None, *schema, name]) if kind.is_pointer or kind.is_pointer_list else None)
                  for i, kind in enumerate(draw.choices(list(Kind), k=draw.randint(1, 6)))]
        schema.add(name, fields, parents=draw.sample(sorted(schema), draw.choice([0, 0, min(1, len(schema))])))
        for field, kind, _ in fields:
            most = draw.choice([0, 0, 2])
            if kind in LISTS:
                shapes[f"{name}.{field}"] = (draw.randint(0, most),)
            elif kind is Kind.CHILD_MAP:
                shapes[f"{name}.{field}"] = draw.choice([(-1, -1) if most else (0, 0), (draw.randint(0, most), draw.randint(0, most))])
    model = zo.Model(schema, version=1, release=2026)
    objects = [model.new(draw.choice(list(schema))) for _ in range(draw.randint(1, 12))]
    model.root, model.externals = objects[0], objects[1:]
    for made in objects:
        fill(draw, model, made, objects, shapes)
    return model, shapes


def fill(draw, model, made, objects, shapes):
    values = {Kind.INT: lambda: draw.randint(-3, 9), Kind.UNSIGNED: lambda: draw.randint(0, 9), Kind.FLOAT: lambda: 0.5,
              Kind.DOUBLE: lambda: draw.random(), Kind.BOOL: lambda: draw.random() < 0.5,
              Kind.STRING: lambda: draw.choice(["", "a", "çã"]), Kind.BLOB: lambda: draw.randbytes(draw.randint(0, 5))}
    items = {Kind.INT_LIST: Kind.INT, Kind.FLOAT_LIST: Kind.FLOAT, Kind.DOUBLE_LIST: Kind.DOUBLE, Kind.STRING_LIST: Kind.STRING}
    for slot, value in zip(made.cls.slots, made._values):
        kind, shape = slot.field.kind, shapes.get(f"{slot.owner.name}.{slot.field.name}")
        fit = [None, *(found for found in objects if model.schema.may_lead(slot.field.target, found.cls))]
        number = draw.randint(0, 3)
        if kind in values:
            made[slot.field.name] = values[kind]()
        elif kind.is_pointer:
            made[slot.field.name] = draw.choice(fit)
        elif kind is Kind.CHILD_MAP:
            value.single = shape[0] < 0
            value[:] = [(draw.choice([None, *objects]), draw.choice([None, *objects])) for _ in range(1 if value.single else number)]
            value.integers = tuple(tuple(draw.randint(0, 4) for _ in range(max(0, half))) for half in shape)
        else:
            value[:] = [values[items[kind]]() if kind in items else draw.choice(fit) for _ in range(number)]
            value.integers = tuple(draw.randint(0, 4) for _ in range(shape[0]))


def short(number):
    """As a float of 32 bits, of which JSON has fewer digits."""
    try:
        return struct.unpack("f", struct.pack("f", float(number)))[0]
    except OverflowError:
        return float(number)


def numbered(value, uids):
    """A value of a model as a record has it."""
    if isinstance(value, zo.ObjectMap):
        return (tuple(uids[key] for key, _ in value), tuple(uids[held] for _, held in value), value.single)
    if isinstance(value, zo.ObjectList):
        return tuple(uids[item] for item in value)
    return tuple(value) if isinstance(value, list) else uids.get(value, value) if isinstance(value, zo.Object) else value


def dumped(record):
    """A record as `zo dump --jsonl` tells of it."""
    def pointer(uid):
        return record._file[uid] and {"uid": uid, "class": record._file[uid].cls.name} if uid else None

    def plain(kind, value):
        if kind.is_pointer:
            return pointer(value)
        if kind is Kind.CHILD_MAP:
            keys, values = (items(half, pointer) for half in value[:2])
            return {"keys": keys[0], "values": values[0]} if value.single else {"keys": keys, "values": values}
        if isinstance(value, tuple):
            return items(value, pointer if kind.is_pointer_list else lambda item: item)
        return base64.b64encode(value).decode() if kind is Kind.BLOB else value

    def items(value, plain):
        found = [plain(item) for item in value]
        return {"integers": list(value.integers), "items": found} if value.integers else found
    fields = {slot.field.name: plain(slot.field.kind, value) for slot, value in zip(record.cls.slots, record.raw)}
    return {"uid": record.uid, "class": record.cls.name, "fields": fields}


class Drawn(FolderTest):
    def test_what_is_written_is_read(self):
        for seed in range(200):
            model, shapes = drawn(seed)
            data = model.to_bytes()
            uids = {None: 0, **{made: uid for uid, made in enumerate(model.objects(), 1)}}
            with self.subTest(seed):
                for made, record in zip(model.objects(), zo.open(data, layouts=shapes, check=True), strict=True):
                    self.assertEqual([numbered(value, uids) or value for value in made._values],
                                     [value or other for value, other in zip(record.raw, made._values)])
                self.assertEqual(zo.load(data, layouts=shapes).to_bytes(), data)

    def test_the_file_tool_reads_the_same(self):
        program = os.environ.get("ZO_TOOL")
        self.assertTrue(program, "ZO_TOOL does not name the file tool: use ./dev test python")
        for seed in range(60):
            path = self.folder / f"{seed}.zo"
            path.write_bytes(drawn(seed)[0].to_bytes())
            with self.subTest(seed), zo.open(path) as file:
                done = subprocess.run([program, "dump", "--jsonl", path], capture_output=True, encoding="utf-8", timeout=60)
                # It warns of each undecided field, in the user's language.
                told = {tuple(re.findall(r"\b[Cf]\d\w*\b", line.replace(str(path), ""))) for line in done.stderr.splitlines()}
                self.assertEqual(told, {(cls, name) for cls, names in file.undecided().items() for name in names})
                objects = [json.loads(line, parse_float=short) for line in done.stdout.splitlines()]
                self.assertEqual(objects, json.loads(json.dumps([dumped(record) for record in file]), parse_float=short))


if __name__ == "__main__":
    unittest.main()
