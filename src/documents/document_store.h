// Saves and opens documents, with what the user is told of it: the commands Save, Save As and Open, the names
// of new documents, and the recent ones. No state of its own; the reading and writing are members of
// `DocumentSession`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "documents/app_settings.h"
#include "documents/document_session.h"

namespace ostrelon {

enum class SaveOutcome { saved, failed, cancelled };
using SaveDone = std::function<void(SaveOutcome)>;

/// The Save command: to the document's file, else to a free name in the projects folder, else as Save
/// As. With `announce` the steps show as toasts, and the work starts once the first one has been drawn.
/// Asks before it overwrites what another program has written. `done` is called once, at the end.
void saveCurrentDocument(DocumentSession& document, AppSettings& settings, bool announce, SaveDone done = {});
/// Asks where, and saves there. A name without extension gets the document's.
void saveDocumentAs(DocumentSession& document, AppSettings& settings, bool announce, SaveDone done = {});
/// Saves and reports it. Gives the failure text, prefix included; absent when the document was saved.
std::optional<std::string> saveToURL(DocumentSession& document, AppSettings& settings, const FilePath& url,
                                     bool announce);
/// Saves a new document under the first free name of the projects folder, which must be set; a name that
/// another window takes meanwhile is passed over. Else as `saveToURL`.
std::optional<std::string> saveToFreeName(DocumentSession& document, AppSettings& settings, bool announce);
/// Opens and reports it. Gives the failure text, prefix included; absent when the document was opened, or
/// will be once the user has answered that it may replace what could not be kept.
std::optional<std::string> openDocument(DocumentSession& document, AppSettings& settings,
                                        const FilePath& url);

/// The end of an opening whose file was read elsewhere: takes the document over and reports it, as above.
std::optional<std::string> finishOpening(DocumentSession& document, AppSettings& settings,
                                         const std::shared_ptr<DocumentReading>& reading);
/// Reports an opening that failed. Gives the whole text.
std::string reportOpenFailed(DocumentSession& document, const std::string& description);

/// The first of "Untitled Project.ostrel", "Untitled Project (1).ostrel", … that is free.
FilePath nextUntitledURL(FileSystem& files, const FilePath& folder);

/// The documents of the projects folder, the one written last first, at most `limit` of them. Throws
/// `projectsFolderNotConfigured`, and the file system's error when the folder cannot be listed.
std::vector<FilePath> recentDocuments(const AppSettings& settings, std::int64_t limit);

// --- The two ends of a save, for those that write on their own

/// History, the console line and, with `announce`, the toast of a save that went well.
void reportSaved(DocumentSession& document, AppSettings& settings, bool announce);
/// The same of one that did not. Gives the whole text.
std::string reportSaveFailed(DocumentSession& document, const std::string& description, bool announce);

}  // namespace ostrelon
