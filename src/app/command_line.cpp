#include "app/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <sstream>
#include <string_view>

#include "documents/app_settings.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::string_view kDocumentExtension = ".ostrel";
constexpr std::string_view kDrawingExtension = ".dxf";
constexpr std::string_view kUITestingOption = "-uiTestingResetProjectsFolder";

// The options whose work is done on files of drawings.
struct FileOption {
  const char* name;
  int files;
  const char* needs;
  CommandLine::Mode mode;
};
constexpr std::array<FileOption, 3> kFileOptions{
    {{"--compare", 2, "two files, the old and the new one", CommandLine::Mode::compare},
     {"--merge", 3, "three files: base, ours and theirs", CommandLine::Mode::merge},
     {"--describe", 1, "a file", CommandLine::Mode::describe}}};

// An export option, with its complaint as one about the command line.
void setOption(CommandLine& line, std::string_view name, const std::string& value) {
  try {
    setExportOption(line.exportOptions, name, value);
  } catch (const ExportOptionError& error) {
    throw CommandLineError(error.what());
  }
}

std::filesystem::path exportPath(const std::string& text) {
  if (isTableFile(text)) return text;
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

MergeChoice mergeChoice(const std::string& text) {
  if (const auto choice = mergeChoiceNamed(text)) return *choice;
  throw CommandLineError(fmt::format("--prefer takes ours, theirs or both, not \"{}\".", text));
}

DxfUnit importUnit(const std::string& text) {
  if (const auto unit = dxfUnitNamed(text)) return *unit;
  throw CommandLineError(fmt::format("--unit takes mm, cm, m, in or ft, not \"{}\".", text));
}

// "A,B"; a layer's name holds no comma.
std::vector<std::string> layerNames(const std::string& text) {
  std::vector<std::string> names;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ',');) {
    if (const std::string_view name = trimmed(part); !name.empty()) names.emplace_back(name);
  }
  if (names.empty()) throw CommandLineError("--layers takes the names of layers, as A-WALL,A-DOOR.");
  return names;
}

[[noreturn]] void refuseMissingValue(std::string_view option) {
  throw CommandLineError(fmt::format("The option {} needs a value.", option));
}

[[noreturn]] void refuseUnknownOption(std::string_view argument) {
  throw CommandLineError(fmt::format("Unknown option \"{}\"; --help lists them all.", argument));
}

// The arguments in the form that the library reads: a long name after one dash is taken out, a value after a
// flag's equals sign is refused, and an empty value becomes an argument of its own.
std::vector<std::string> readable(const std::vector<std::string>& arguments, CLI::App& parser,
                                  CommandLine& line) {
  std::vector<std::string> result;
  for (const std::string& argument : arguments) {
    if (argument == kUITestingOption) {
      line.isUITesting = true;
      continue;
    }
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const std::string name = argument.substr(0, equals);
    const CLI::Option* option = equals == std::string::npos ? nullptr : parser.get_option_no_throw(name);
    if (option && option->get_items_expected_max() == 0) refuseUnknownOption(argument);
    if (option && equals + 1 == argument.size()) {
      result.insert(result.end(), {name, ""});
    } else {
      result.push_back(argument);
    }
  }
  return result;
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments, const Environment& environment) {
  CommandLine line;
  if (environment) line.isUITesting = isUITestingStart({}, environment("UI_TESTING_RESET_PROJECTS"));
  bool isAutomation = false;
  std::string exportOption;      // the last option that says how to export
  std::string importOption;      // the last option that says how to import
  std::string automationOption;  // the last option that only automation knows
  std::optional<std::filesystem::path> opened;
  std::optional<std::filesystem::path> drawing;  // named by itself, to be imported in the window
  std::optional<CommandLine::Mode> asked;

  CLI::App parser;
  parser.set_help_flag();  // the library's own text and exit are not wanted
  parser.allow_extras();   // judged below, with error texts of this program
  const auto flag = [&](const std::string& names, const std::function<void()>& apply) {
    parser.add_flag_callback(names, apply)->trigger_on_parse();
  };
  const auto option = [&](const std::string& name, const std::function<void(const std::string&)>& apply) {
    const auto take = [name, apply](const CLI::results_t& values) {
      // An empty address or key stands for a build that has none.
      if (values.front().empty() && !name.starts_with("--update-")) refuseMissingValue(name);
      apply(values.front());
      return true;
    };
    parser.add_option(name, take)->trigger_on_parse();
  };
  const auto exportFlag = [&](const std::string& name, const char* setting, const char* value) {
    flag(name, [&, name, setting, value] {
      setOption(line, setting, value);
      exportOption = name;
    });
  };
  const auto exportSetting = [&](const std::string& setting) {
    option("--" + setting, [&, setting](const std::string& value) {
      setOption(line, setting, value);
      exportOption = "--" + setting;
    });
  };
  const auto automationSetting = [&](const std::string& name, std::optional<std::string>& setting) {
    option(name, [&, name](const std::string& value) {
      setting = value;
      automationOption = name;
    });
  };

  flag("--help,-h", [&] { asked = CommandLine::Mode::help; });
  flag("--version", [&] { asked = CommandLine::Mode::version; });
  flag("--strict", [&] { line.isStrict = true; });
  flag("--automation", [&] { isAutomation = true; });
  const auto importFlag = [&](const std::string& name, const std::function<void()>& apply) {
    flag(name, [&importOption, name, apply] {
      importOption = name;
      apply();
    });
  };
  importFlag("--to-feet", [] {});  // what is done anyway
  importFlag("--to-origin", [&] { line.importOptions.toOrigin = true; });
  importFlag("--salvage", [&] { line.importOptions.damage = DxfDamage::salvage; });
  option("--unit", [&](const std::string& value) {
    importOption = "--unit";
    line.importOptions.unit = importUnit(value);
  });
  option("--layers", [&](const std::string& value) {
    importOption = "--layers";
    line.importOptions.layers = layerNames(value);
  });
  exportFlag("--grid", "grid", "on");
  exportFlag("--portrait", "orientation", "portrait");
  exportFlag("--landscape", "orientation", "landscape");
  option("--home", [&](const std::string& value) { line.home = value; });
  option("--console", [&](const std::string& value) { line.consoleFiles.push_back(value); });
  option("--open", [&](const std::string& value) { opened = documentPath("--open", value); });
  std::optional<std::string> saveAs;
  option("--save", [&](const std::string& value) { saveAs = value; });
  option("--prefer", [&](const std::string& value) { line.prefer = mergeChoice(value); });
  std::optional<CommandLine::Mode> onFiles;
  std::string fileOption;
  for (const FileOption& known : kFileOptions) {
    const auto take = [&line, &onFiles, &fileOption, known](const CLI::results_t& values) {
      if (onFiles)
        throw CommandLineError(
            fmt::format("The options {} and {} do not go together.", fileOption, known.name));
      onFiles = known.mode;
      fileOption = known.name;
      line.files.assign(values.begin(), values.end());
      return true;
    };
    parser.add_option(known.name, take)->expected(known.files)->trigger_on_parse();
  }
  option("--import", [&](const std::string& value) { line.imports.emplace_back(value); });
  option("--export", [&](const std::string& value) { line.exports.push_back(exportPath(value)); });
  for (const char* setting : {"size", "pixel-ratio", "paper", "scale", "theme", "dxf", "dxf-layers",
                              "dxf-units", "look", "schedule"})
    exportSetting(setting);
  automationSetting("--clock", line.clock);
  automationSetting("--update-feed", line.updateFeed);
  automationSetting("--update-key", line.updateKey);

  std::vector<std::string> reversed = readable(arguments, parser, line);
  std::reverse(reversed.begin(), reversed.end());  // as the library takes them
  try {
    parser.parse(reversed);
  } catch (const CLI::ArgumentMismatch&) {
    for (const FileOption& known : kFileOptions) {
      const auto at = std::find(arguments.begin(), arguments.end(), known.name);
      if (arguments.end() - at > 0 && !onFiles) {
        throw CommandLineError(fmt::format("The option {} needs {}.", known.name, known.needs));
      }
    }
    // Only the last argument can lack what must follow it.
    refuseMissingValue(arguments.back());
  }
  for (const std::string& argument : parser.remaining()) {
    if (argument.starts_with("-")) refuseUnknownOption(argument);
    if (line.document) {
      throw CommandLineError(fmt::format("Only one document can be opened, not also \"{}\".", argument));
    }
    if (lowerCased(std::filesystem::path(argument).extension().string()) == kDrawingExtension) {
      if (drawing)
        throw CommandLineError(fmt::format("Only one drawing can be opened, not also \"{}\".", argument));
      drawing = argument;
      continue;
    }
    line.document = documentPath("The program", argument);
  }

  if (asked) {
    line.mode = *asked;
    return line;
  }
  if (saveAs && onFiles == CommandLine::Mode::merge) {
    line.saveAs = *saveAs;
  } else if (saveAs) {
    line.saveAs = documentPath("--save", *saveAs);
  }
  if (line.prefer && onFiles != CommandLine::Mode::merge) {
    throw CommandLineError("The option --prefer needs --merge.");
  }
  if (onFiles) {
    const bool isMerge = *onFiles == CommandLine::Mode::merge;
    if (isMerge && !line.saveAs) throw CommandLineError("The option --merge needs --save.");
    const bool mayExport = *onFiles == CommandLine::Mode::compare;
    if (isAutomation || !line.consoleFiles.empty() || !line.imports.empty() || opened || line.document ||
        (!line.exports.empty() && !mayExport) || (line.saveAs && !isMerge)) {
      throw CommandLineError(
          fmt::format("The option {} reads its own files and goes with no other work.", fileOption));
    }
    if (line.exports.empty() && !exportOption.empty()) {
      throw CommandLineError(fmt::format("The option {} needs --export.", exportOption));
    }
    line.mode = *onFiles;
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
  if (drawing && (isAutomation || isWithoutWindow)) {
    throw CommandLineError(
        fmt::format("A drawing is imported without a window by --import {}.", drawing->string()));
  }
  if (drawing) line.imports.push_back(*drawing);
  if (line.imports.empty() && !importOption.empty()) {
    throw CommandLineError(fmt::format("The option {} needs --import.", importOption));
  }
  if (line.consoleFiles.empty() && line.isStrict) {
    throw CommandLineError("The option --strict needs --console.");
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
  ostrelon FILE.dxf              opens it and imports a drawing of another program
  ostrelon OPTIONS               does its work without a window and ends
  ostrelon --automation          is driven by requests on standard input

Without a window, done in this order:
  --open FILE.ostrel             opens a document
  --import FILE.dxf              adds a drawing of another program; may be repeated
  --unit mm|cm|m|in|ft           the unit of imported drawings, that of the file or
                                 the likely one unless told
  --layers A,B                   the layers that are imported, all that are neither
                                 off nor frozen unless told
  --to-origin                    moves imported drawings to the origin
  --salvage                      takes what can be read of damaged drawings
  --to-feet                      converts to feet by the unit, as is done anyway
  --console FILE                 runs the lines of a file in the console and prints
                                 the transcript; - is standard input; may be repeated;
                                 lines that begin with # are left out
  --strict                       stops at the first line of --console that is refused,
                                 and neither saves nor exports
  --save FILE.ostrel             saves the document
  --export FILE                  writes all entities to a .png, .svg, .pdf or .dxf
                                 file; may be repeated

Files of drawings, for version control; their names may end in anything:
  --compare OLD NEW              prints what differs; with --export FILE it is drawn
                                 as well, in DXF on layers of its own
  --merge BASE OURS THEIRS       merges both into the file of --save
  --prefer ours|theirs|both      settles what both have changed differently
  --describe FILE                prints a drawing as text, an entity a line

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
  --look PARTS                   the look of the plan, of clean, fill and weights:
                                 --look clean,fill; or none; that of the document
                                 unless told
  --dxf r12|2000                 the version of DXF, 2000 unless told
  --dxf-layers system|kind       names the layers of DXF after wall systems, or by kind,
                                 as A-WALL-W2, A-DOOR and A-LINE
  --dxf-units ft|in|mm           the unit of DXF files, feet unless told
  --schedule openings|rooms|takeoff
                                 what a .csv file of --export holds

Anywhere:
  --home DIR                     keeps settings and documents in a folder of their own
  --help                         prints this text
  --version                      prints the version
  -uiTestingResetProjectsFolder  starts with the default projects folder, asking nothing

Automation:
  --clock TIME                   where its clock starts, such as 2026-01-01T00:00:00Z
  --update-feed URL, --update-key BASE64
                                 stand for the build's feed address and signing key

The exit status is 0, or 1 when a console line was refused, when compared
drawings differ, or when a merge has conflicts and writes nothing, or 2 for a bad option
or a file that cannot be read or written.

The manual is in the window under Help, and "help" in the console lists the commands.
)";
}

}  // namespace ostrelon
