#include "documents/document_paths.h"

#include "platform/unicode.h"

namespace ostrelon {
namespace {

const char* textOf(DocumentFileStoreError::Case which) {
  switch (which) {
    case DocumentFileStoreError::Case::projectsFolderNotConfigured:
      return "Set a default projects folder in Ostrelon Settings before saving.";
    case DocumentFileStoreError::Case::invalidFileExtension:
      return "Ostrelon documents must use the .ostrel extension.";
  }
  return "";
}

}  // namespace

DocumentFileStoreError::DocumentFileStoreError(Case which) : UserError(textOf(which)), case_(which) {}

bool hasDocumentExtension(const FilePath& url) {
  return lowerCased(url.extension().string()) == kDocumentExtension;
}

FilePath checkedDocumentURL(const FilePath& url) {
  if (!hasDocumentExtension(url)) {
    throw DocumentFileStoreError(DocumentFileStoreError::Case::invalidFileExtension);
  }
  return standardizedPath(url);
}

std::string documentNameFor(const FilePath& url) {
  std::string name = url.stem().string();
  return name.empty() ? kUntitledName : name;
}

}  // namespace ostrelon
