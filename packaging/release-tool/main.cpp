// ostrelon-release-tool: makes the publisher's key, signs releases and writes the release feed.
#include <cstdio>
#include <exception>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/date.h"
#include "platform/user_error.h"
#include "release_tool.h"
#include "signing_key.h"

namespace ostrelon {
namespace {

constexpr const char* kUsage =
    R"(Usage:
  ostrelon-release-tool make-key --private-key FILE
      Makes a new signing key, which must stay secret, and prints its public key.
  ostrelon-release-tool public-key --private-key FILE
      Prints the public key for the build's OSTRELON_UPDATE_SIGNING_PUBLIC_KEY_X963.
  ostrelon-release-tool add --manifest FILE --private-key FILE --installer FILE
                            --version VERSION --url URL [--build NUMBER]
                            [--published 2026-03-01T12:00:00Z] [--notes URL] [--change TEXT]...
      Signs the installer's release and adds it to the manifest, or replaces it there.
  ostrelon-release-tool check --manifest FILE --public-key KEY --installer FILE --version VERSION
      Verifies a release as the application does.
)";

/// The "--name value" pairs after a command.
class Options {
 public:
  Options(const std::vector<std::string>& arguments, const std::set<std::string>& known) {
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
      const std::string& name = arguments[i];
      if (!known.contains(name)) throw UserError("There is no option " + name + " here.");
      if (i + 1 == arguments.size()) throw UserError(name + " needs a value behind it.");
      auto& values = values_[name];
      if (!values.empty() && name != "--change") throw UserError(name + " is given twice.");
      values.push_back(arguments[i + 1]);
    }
  }

  std::vector<std::string> all(const std::string& name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::vector<std::string>() : found->second;
  }
  std::optional<std::string> optional(const std::string& name) const {
    const auto values = all(name);
    return values.empty() ? std::nullopt : std::optional(values.front());
  }
  std::string required(const std::string& name) const {
    if (auto value = optional(name)) return *std::move(value);
    throw UserError(name + " is missing.");
  }

 private:
  std::map<std::string, std::vector<std::string>> values_;
};

void print(const std::string& line) { std::printf("%s\n", line.c_str()); }

void makeKey(const std::vector<std::string>& arguments) {
  const Options options(arguments, {"--private-key"});
  const SigningKey key = SigningKey::generate();
  key.write(options.required("--private-key"));
  print(key.publicKey());
}

void printPublicKey(const std::vector<std::string>& arguments) {
  const Options options(arguments, {"--private-key"});
  print(SigningKey::read(options.required("--private-key")).publicKey());
}

void add(const std::vector<std::string>& arguments) {
  const Options options(arguments, {"--manifest", "--private-key", "--installer", "--version", "--url",
                                    "--build", "--published", "--notes", "--change"});
  AppUpdateRelease release;
  release.version = options.required("--version");
  release.downloadURL = options.required("--url");
  release.build = options.optional("--build");
  release.releaseNotesURL = options.optional("--notes");
  release.changes = options.all("--change");
  if (const auto published = options.optional("--published")) {
    release.publishedAt = parseISO8601(*published);
    if (!release.publishedAt)
      throw UserError("\"" + *published + "\" is not a date such as 2026-03-01T12:00:00Z.");
  }
  const std::string manifest = options.required("--manifest");
  const std::string installer = options.required("--installer");
  const SigningKey key = SigningKey::read(options.required("--private-key"));
  const AppUpdateRelease added = addRelease(manifest, installer, std::move(release), key);
  print("Signed " + added.version + ", SHA-256 " + added.sha256 + ".");
}

void check(const std::vector<std::string>& arguments) {
  const Options options(arguments, {"--manifest", "--public-key", "--installer", "--version"});
  checkRelease(options.required("--manifest"), options.required("--installer"), options.required("--version"),
               options.required("--public-key"));
  print("The release is genuine.");
}

int run(const std::vector<std::string>& arguments) {
  using Command = void (*)(const std::vector<std::string>&);
  const std::map<std::string, Command> commands{
      {"make-key", makeKey}, {"public-key", printPublicKey}, {"add", add}, {"check", check}};
  if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "help")) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  const auto command = arguments.empty() ? commands.end() : commands.find(arguments[0]);
  if (command == commands.end()) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  try {
    command->second({arguments.begin() + 1, arguments.end()});
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

}  // namespace
}  // namespace ostrelon

int main(int argc, char** argv) { return ostrelon::run({argv + 1, argv + argc}); }
