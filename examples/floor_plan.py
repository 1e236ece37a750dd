#!/usr/bin/env python3
"""Draws a parametric row house with Ostrelon and exports it.

    examples/floor_plan.py --width 24 --depth 36 --rooms 3 --out plan

writes plan.ostrel, plan.pdf (a quarter of an inch to the foot), plan.dxf and plan.png. Lengths are in
feet. The program is found where --program says, as `ostrelon` on the PATH, or where `./run` builds it.
"""
import argparse
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass

EXTERIOR, INTERIOR = "W2-EXT", "W2-INT"
DOOR = 3.0  # the width of a door


class OstrelonError(Exception):
    """A request that was refused, or a console line that was answered with an error."""


class Ostrelon:
    """The program, driven by one JSON object a line."""

    def __init__(self, program, home):
        self.process = subprocess.Popen(
            [program, "--automation", "--home", home],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, encoding="utf-8",
        )

    def request(self, op, **members):
        self.process.stdin.write(json.dumps({"op": op, **members}) + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        if not answer:
            raise OstrelonError("The program has ended.")
        reply = json.loads(answer)
        if not reply["ok"]:
            raise OstrelonError(reply["error"])
        for line in reply["console"]:
            if line["isError"]:
                raise OstrelonError(line["text"])
        return reply["result"]

    def call(self, name, *args):
        return self.request("call", name=name, args=list(args))

    def close(self):
        """The end of its input is a normal end of the program."""
        self.process.stdin.close()
        if self.process.wait() != 0:
            raise OstrelonError("The program ended badly.")


@dataclass
class Point:
    x: float
    y: float

    def __str__(self):
        return f"{self.x:g} {self.y:g}"


def wall_chain(corners, system):
    """One console line that draws walls from corner to corner, all of them or none."""
    return "; ".join(f"wall {a} {b} {system}" for a, b in zip(corners, corners[1:]))


def draw_house(ostrelon, width, depth, rooms):
    # The systems of a new document have their sizes in inches.
    ostrelon.request("submit", text="system inches yes")
    # The outside, with the front door in the middle of the lower side.
    door_left, door_right = (width - DOOR) / 2, (width + DOOR) / 2
    outside = [Point(door_right, 0), Point(width, 0), Point(width, depth), Point(0, depth), Point(0, 0),
               Point(door_left, 0)]
    ostrelon.request("submit", text=wall_chain(outside, EXTERIOR))
    # Walls between the rooms, each with a door that changes sides, and the swing of the door.
    for i in range(1, rooms):
        y = depth * i / rooms
        hinge = 2.0 if i % 2 else width - 2.0 - DOOR
        ostrelon.request("submit", text=wall_chain([Point(0, y), Point(hinge, y)], INTERIOR))
        ostrelon.request("submit", text=wall_chain([Point(hinge + DOOR, y), Point(width, y)], INTERIOR))
        ostrelon.request("submit", text=f"line {hinge:g} {y:g} {hinge:g} {y + DOOR:g}")
    # A table in each room.
    for i in range(rooms):
        middle = depth * (i + 0.5) / rooms
        if i % 2:
            ostrelon.request("submit", text=f"circle {width / 2:g} {middle:g} 2")
        else:
            ostrelon.request("submit", text=f"rect {width / 2 - 3:g} {middle - 1.5:g} 6 3")


def main():
    parser = argparse.ArgumentParser(description="Draws a parametric row house and exports it.")
    parser.add_argument("--width", type=float, default=24, help="feet, at least 12")
    parser.add_argument("--depth", type=float, default=36, help="feet, at least 10 for each room")
    parser.add_argument("--rooms", type=int, default=3)
    parser.add_argument("--out", default="plan", help="names the files: plan.ostrel, plan.pdf, …")
    built = pathlib.Path(__file__).resolve().parent.parent / "build/release/ostrelon"
    parser.add_argument("--program", default=shutil.which("ostrelon") or str(built))
    options = parser.parse_args()
    if options.rooms < 1 or options.width < 12 or options.depth < 10 * options.rooms:
        parser.error("the house is too small for its rooms")

    out = pathlib.Path(options.out).absolute()
    with tempfile.TemporaryDirectory() as home:
        ostrelon = Ostrelon(options.program, home)
        try:
            draw_house(ostrelon, options.width, options.depth, options.rooms)
            ostrelon.call("saveDocumentFile", f"{out}.ostrel")
            ostrelon.request("export", path=f"{out}.pdf",
                             options={"paper": "Tabloid", "scale": '1/4" = 1\'', "grid": "off"})
            ostrelon.request("export", path=f"{out}.dxf")
            ostrelon.request("export", path=f"{out}.png",
                             options={"scale": '1/4" = 1\'', "pixel-ratio": "2"})
            entities = ostrelon.request("state", fields=["entities"])["entities"]
        except OstrelonError as error:
            sys.exit(f"floor_plan.py: {error}")
        ostrelon.close()

    walls = [entity for entity in entities if entity["case"] == "wall"]
    length = sum(((w["to"][0] - w["from"][0]) ** 2 + (w["to"][1] - w["from"][1]) ** 2) ** 0.5 for w in walls)
    print(f"{len(walls)} walls, {length:g} feet of them; wrote {out}.ostrel, .pdf, .dxf and .png")


if __name__ == "__main__":
    main()
