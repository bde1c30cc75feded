"""What the Python package costs: processor seconds and peak memory of each chore, each in a process of its own.

    python3 bench/python_package.py [OBJECTS ...]       100,000 and 1,000,000 objects unless told
"""
import os
import resource
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "bindings", "python"))

import zoprimitives as zo  # noqa: E402
from zoprimitives import Kind  # noqa: E402


def make(count):
    """Half nodes, half bars between them: some 68 bytes a record."""
    schema = zo.Schema()
    schema.add("Node", [("name", Kind.STRING), *((axis, Kind.DOUBLE) for axis in "xyz"), ("support", Kind.BOOL)])
    schema.add("Bar", [("name", Kind.STRING), ("area", Kind.DOUBLE), ("start", Kind.REFERENCE, "Node"),
                       ("end", Kind.REFERENCE, "Node"), ("loads", Kind.DOUBLE_LIST)])
    schema.add("Frame", [("nodes", Kind.CHILD_LIST, "Node"), ("bars", Kind.CHILD_LIST, "Bar")])
    model = zo.Model(schema, version=1, release=2026)
    nodes = [model.new("Node", name=f"n{i}", x=i * 1.0, y=2.0, z=0.5) for i in range(count // 2)]
    bars = [model.new("Bar", name=f"b{i}", area=3.5, start=nodes[i], end=nodes[-i], loads=[1.0, 2.0])
            for i in range(count - len(nodes) - 1)]
    model.root = model.new("Frame", nodes=nodes, bars=bars)
    return model


def all_values(path):
    for record in zo.open(path):
        record.raw


CHORES = {
    "make a model": lambda path, count: make(count),
    "make a model and save it": lambda path, count: make(count).save(path),
    "index the objects": lambda path, count: len(zo.open(path)),
    "read every object": lambda path, count: all_values(path),
    "read every object, the file mapped": lambda path, count: [None for record in zo.open(path, mapped=True) if not record.raw],
    "rows of one class (half the objects)": lambda path, count: [None for row in zo.open(path).rows("Bar") if not row],
    "data frame of one class": lambda path, count: zo.open(path).dataframe("Bar"),
    "check the file": lambda path, count: zo.open(path, check=True),
    "load it as a model": lambda path, count: zo.load(path),
}


def measured(chore, path, count):
    """Processor seconds and the process's peak memory in MB."""
    read, write = os.pipe()
    child = os.fork()
    if child == 0:
        begin = time.process_time()
        chore(path, count)
        seconds = time.process_time() - begin
        os.write(write, f"{seconds:7.2f} s {resource.getrusage(resource.RUSAGE_SELF).ru_maxrss // 1024:5} MB".encode())
        os._exit(0)
    _, status = os.waitpid(child, 0)
    os.close(write)
    with os.fdopen(read) as said:
        return said.read() if status == 0 else "failed"


def main():
    for count in [int(word) for word in sys.argv[1:]] or [100_000, 1_000_000]:
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "bench.zo")
            for name, chore in CHORES.items():
                print(f"{count:9,} {name:38} {measured(chore, path, count)}", flush=True)
            print(f"{count:9,} {os.path.getsize(path):,} bytes")


if __name__ == "__main__":
    main()
