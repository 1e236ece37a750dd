// Reads format 1, the verbose one: every entity is an object under the name of its kind.
#pragma once

#include "documents/json_reading.h"
#include "documents/sketch_document.h"

namespace ostrelon {

SketchDocumentFile readVerboseDocument(JsonReading& reading);

}  // namespace ostrelon
