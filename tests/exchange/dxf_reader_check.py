"""Opens a DXF file with an independent reader, audits it, and prints what is in it as JSON.

usage: dxf_reader_check.py FILE.dxf
"""
import json
import sys

import ezdxf

document = ezdxf.readfile(sys.argv[1])
audit = document.audit()
found = []
for entity in document.modelspace():
    kind = entity.dxftype()
    row = {"kind": kind, "layer": entity.dxf.layer, "lineType": entity.dxf.get("linetype", "BYLAYER")}
    if kind == "LINE":
        row["points"] = [list(entity.dxf.start)[:2], list(entity.dxf.end)[:2]]
    elif kind in ("CIRCLE", "ARC"):
        row["points"] = [list(entity.dxf.center)[:2]]
        row["radius"] = entity.dxf.radius
        if kind == "ARC":
            row["angles"] = [entity.dxf.start_angle, entity.dxf.end_angle]
    elif kind == "LWPOLYLINE":
        row["points"] = [list(point) for point in entity.get_points("xy")]
        row["closed"] = bool(entity.closed)
    elif kind == "POLYLINE":
        row["points"] = [list(point)[:2] for point in entity.points()]
        row["closed"] = bool(entity.is_closed)
    found.append(row)
json.dump(
    {
        "version": document.dxfversion,
        "unit": document.header.get("$INSUNITS", 0),
        "problems": [str(error.message) for error in audit.errors + audit.fixes],
        "layers": [layer.dxf.name for layer in document.layers],
        "entities": found,
    },
    sys.stdout,
)
