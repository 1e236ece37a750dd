"""Draws every DXF file of a folder with an independent reader, and prints the box and the length of all lines.

usage: dxf_corpus_check.py FOLDER
"""
import json
import pathlib
import sys

from ezdxf import disassemble, recover
from ezdxf.math import BoundingBox2d


def visible(document, entity):
    layer = document.layers.get(entity.dxf.layer) if entity.dxf.layer in document.layers else None
    hidden = layer is not None and (layer.is_off() or layer.is_frozen())
    return not hidden and not entity.dxf.invisible and not entity.dxf.paperspace


found = {}
for path in sorted(pathlib.Path(sys.argv[1]).glob("*.dxf")):
    document, _ = recover.readfile(path)
    entities = [entity for entity in document.modelspace() if visible(document, entity)]
    box = BoundingBox2d()
    length = 0.0
    for primitive in disassemble.to_primitives(disassemble.recursive_decompose(entities)):
        if primitive.entity.dxftype() in ("TEXT", "MTEXT", "ATTRIB"):
            continue
        paths = [primitive.path] if primitive.path is not None else []
        if primitive.mesh is not None:
            lines = [[*face, face[0]] for face in primitive.mesh.faces_as_vertices()]
        else:
            lines = [path.flattening(0.0005) for path in paths]
        for line in lines:
            points = [point.vec2 for point in line]
            box.extend(points)
            length += sum(a.distance(b) for a, b in zip(points, points[1:]))
    found[path.stem] = {
        "box": [*box.extmin, *box.extmax],
        "length": length,
        "layers": [layer.dxf.name for layer in document.layers],
    }
json.dump(found, sys.stdout)
