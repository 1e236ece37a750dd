#include "app/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string_view>

#include "documents/app_settings.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::string_view kDocumentExtension = ".ostrel";

// An export option, with its complaint as one about the command line.
void setOption(CommandLine& line, std::string_view name, const std::string& value) {
  try {
    setExportOption(line.exportOptions, name, value);
  } catch (const ExportOptionError& error) {
    throw CommandLineError(error.what());
  }
}

std::filesystem::path exportPath(const std::string& text) {
  try {
    exportFormatOf(text);
  } catch (const ExportOptionError& error) {
    throw CommandLineError(error.what());
  }
  return text;
}

std::filesystem::path documentPath(std::string_view option, const std::string& text) {
  std::filesystem::path path(text);
  if (lowerCased(path.extension().string()) != kDocumentExtension) {
    throw CommandLineError(
        fmt::format("{} needs a document whose name ends in .ostrel, not \"{}\".", option, text));
  }
  return path;
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments, const Environment& environment) {
  CommandLine line;
  if (environment) line.isUITesting = isUITestingStart({}, environment("UI_TESTING_RESET_PROJECTS"));
  bool isAutomation = false;
  std::string exportOption;      // the last option that says how to export
  std::string automationOption;  // the last option that only automation knows
  std::optional<std::filesystem::path> opened;
  std::optional<CommandLine::Mode> asked;

  const auto exporting = [&](std::string_view option, std::string_view name, const std::string& value) {
    setOption(line, name, value);
    exportOption = option;
  };

  const std::map<std::string_view, std::function<void()>> flags{
      {"--help", [&] { asked = CommandLine::Mode::help; }},
      {"-h", [&] { asked = CommandLine::Mode::help; }},
      {"--version", [&] { asked = CommandLine::Mode::version; }},
      {"--automation", [&] { isAutomation = true; }},
      {"--grid", [&] { exporting("--grid", "grid", "on"); }},
      {"--portrait", [&] { exporting("--portrait", "orientation", "portrait"); }},
      {"--landscape", [&] { exporting("--landscape", "orientation", "landscape"); }},
      {"--to-feet", [&] { line.convertImports = true; }},
      {"-uiTestingResetProjectsFolder", [&] { line.isUITesting = true; }},
  };
  const std::map<std::string_view, std::function<void(const std::string&)>> options{
      {"--home", [&](const std::string& value) { line.home = value; }},
      {"--console", [&](const std::string& value) { line.consoleFiles.push_back(value); }},
      {"--open", [&](const std::string& value) { opened = documentPath("--open", value); }},
      {"--save", [&](const std::string& value) { line.saveAs = documentPath("--save", value); }},
      {"--import", [&](const std::string& value) { line.imports.emplace_back(value); }},
      {"--export", [&](const std::string& value) { line.exports.push_back(exportPath(value)); }},
      {"--size", [&](const std::string& value) { exporting("--size", "size", value); }},
      {"--pixel-ratio", [&](const std::string& value) { exporting("--pixel-ratio", "pixel-ratio", value); }},
      {"--paper", [&](const std::string& value) { exporting("--paper", "paper", value); }},
      {"--scale", [&](const std::string& value) { exporting("--scale", "scale", value); }},
      {"--theme", [&](const std::string& value) { exporting("--theme", "theme", value); }},
      {"--dxf", [&](const std::string& value) { exporting("--dxf", "dxf", value); }},
      {"--clock",
       [&](const std::string& value) {
         line.clock = value;
         automationOption = "--clock";
       }},
      {"--update-feed",
       [&](const std::string& value) {
         line.updateFeed = value;
         automationOption = "--update-feed";
       }},
      {"--update-key",
       [&](const std::string& value) {
         line.updateKey = value;
         automationOption = "--update-key";
       }},
  };

  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (const auto flag = flags.find(argument); flag != flags.end()) {
      flag->second();
      continue;
    }
    // A value follows as the next argument, or behind an equals sign.
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const auto option = options.find(std::string_view(argument).substr(0, equals));
    if (option != options.end()) {
      if (equals == std::string::npos && i + 1 == arguments.size()) {
        throw CommandLineError(fmt::format("The option {} needs a value.", argument));
      }
      const std::string value = equals == std::string::npos ? arguments[++i] : argument.substr(equals + 1);
      // An empty address or key stands for a build that has none.
      if (value.empty() && !option->first.starts_with("--update-")) {
        throw CommandLineError(fmt::format("The option {} needs a value.", option->first));
      }
      option->second(value);
      continue;
    }
    if (argument.starts_with("-")) {
      throw CommandLineError(fmt::format("Unknown option \"{}\"; --help lists them all.", argument));
    }
    if (line.document) {
      throw CommandLineError(fmt::format("Only one document can be opened, not also \"{}\".", argument));
    }
    line.document = documentPath("The program", argument);
  }

  if (asked) {
    line.mode = *asked;
    return line;
  }
  const bool isWithoutWindow =
      !line.consoleFiles.empty() || !line.imports.empty() || opened || line.saveAs || !line.exports.empty();
  if (isAutomation && (isWithoutWindow || line.document)) {
    throw CommandLineError("The option --automation takes its documents from its requests alone.");
  }
  if (!isAutomation && !automationOption.empty()) {
    throw CommandLineError(fmt::format("The option {} belongs to --automation.", automationOption));
  }
  if (line.exports.empty() && !exportOption.empty()) {
    throw CommandLineError(fmt::format("The option {} needs --export.", exportOption));
  }
  if (line.imports.empty() && line.convertImports) {
    throw CommandLineError("The option --to-feet needs --import.");
  }
  if (opened && line.document) {
    throw CommandLineError("Only one document can be opened, by --open or by its name alone.");
  }
  if (opened) line.document = opened;
  if (isAutomation) {
    line.mode = CommandLine::Mode::automation;
  } else if (isWithoutWindow) {
    line.mode = CommandLine::Mode::withoutWindow;
  }
  return line;
}

std::string commandLineHelp() {
  return R"(Ostrelon draws building plans in two dimensions.

  ostrelon [FILE.ostrel]         opens the window, with a document
  ostrelon OPTIONS               does its work without a window and ends
  ostrelon --automation          is driven by requests on standard input

Without a window, done in this order:
  --open FILE.ostrel             opens a document
  --import FILE.dxf              adds a drawing of another program; may be repeated
  --to-feet                      converts imported drawings that tell their unit
  --console FILE                 runs the lines of a file in the console and prints
                                 the transcript; - is standard input; may be repeated
  --save FILE.ostrel             saves the document
  --export FILE                  writes all entities to a .png, .svg, .pdf or .dxf
                                 file; may be repeated

How exported files look:
  --size WxH                     the size of pictures, 1200x800 unless told
  --pixel-ratio 1|2|3|4          pixels of a PNG for each of these
  --paper NAME                   a sheet instead of a size: Letter, Legal, Tabloid,
                                 "ANSI A" to E, "ARCH A" to E, A4 to A0; a PDF has
                                 as many as it takes
  --scale SCALE                  true scale, such as 1/4in=1ft or 1:50; without it
                                 the drawing fills its sheet
  --portrait, --landscape        how the sheet lies
  --theme light|dark|tansy       the colors of pictures, light unless told
  --grid                         draws the grid in pictures
  --dxf r12|2000                 the version of DXF, 2000 unless told

Anywhere:
  --home DIR                     keeps settings and documents in a folder of their own
  --help                         prints this text
  --version                      prints the version
  -uiTestingResetProjectsFolder  starts with the default projects folder, asking nothing

Automation:
  --clock TIME                   where its clock starts, such as 2026-01-01T00:00:00Z
  --update-feed URL, --update-key BASE64
                                 stand for the build's feed address and signing key

The exit status is 0, or 1 when a console line was answered with an error, or 2 for
a bad option or a file that cannot be read or written.
)";
}

}  // namespace ostrelon
