// What the path of a document says: whether it may be one, and what the document is called.
#pragma once

#include <string>

#include "platform/file_system.h"
#include "platform/user_error.h"

namespace ostrelon {

inline constexpr const char* kDocumentExtension = ".ostrel";
inline constexpr const char* kUntitledName = "Untitled Project";

class DocumentFileStoreError : public UserError {
 public:
  enum class Case { projectsFolderNotConfigured, invalidFileExtension };

  explicit DocumentFileStoreError(Case which);
  Case which() const { return case_; }

 private:
  Case case_;
};

/// Whether the extension is "ostrel", without regard to case.
bool hasDocumentExtension(const FilePath& url);
/// The standardised path. Throws `invalidFileExtension` for one that no document can have.
FilePath checkedDocumentURL(const FilePath& url);
/// The file's name without extension.
std::string documentNameFor(const FilePath& url);

}  // namespace ostrelon
