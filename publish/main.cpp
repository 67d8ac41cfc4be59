// zendora-publish: makes and checks what players will download. Its manual is docs/publishing.md.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "system/text.h"
#ifdef _WIN32
#include <windows.h>
#endif

namespace {

constexpr char kAbout[] =
    "Makes and checks the manifest and the packages of a Zendora site. It never uploads, asks a question, overwrites a "
    "file without -o, prints a password or runs what a package contains.";
constexpr char kExitCodes[] = "Exit codes: 0 clean, 1 findings, 2 wrong usage or an unreadable file, 3 network.";

// May be given several times, each time with one value: otherwise it would swallow what stands behind it.
CLI::Option* AddRepeatable(CLI::App* command, const char* name, std::vector<std::string>& values, const char* help) {
  return command->add_option(name, values, help)->allow_extra_args(false);
}

// Each command is set up by one of these, and leaves its exit code in `code`.

void AddCheck(CLI::App& app, int& code) {
  CLI::App* command = app.add_subcommand("check", "tells what is wrong with a manifest, and with its packages");
  auto arguments = std::make_shared<CheckArguments>();
  command->add_option("MANIFEST", arguments->manifest)->required();
  command->add_option("--files", arguments->files, "look at the packages, too, which lie there under their filenames");
  AddRepeatable(command, "--skip", arguments->skipped,
                "leave out a check, by the name in brackets behind its messages");
  command->add_flag("--strict", arguments->strict, "count warnings as errors");
  command->add_flag("--json", arguments->json, "print one JSON object");
  command->callback([=, &code] { code = RunCheck(*arguments); });
}

void AddFill(CLI::App& app, int& code) {
  CLI::App* command = app.add_subcommand("fill", "corrects size, md5 and upsize in a manifest, and nothing else");
  auto arguments = std::make_shared<FillArguments>();
  command->add_option("MANIFEST", arguments->manifest)->required();
  command->add_option("--files", arguments->files, "where the packages lie under their filenames")->required();
  command->add_option("-o", arguments->output, "write the result there (it may be MANIFEST); without it, only tell");
  command->callback([=, &code] { code = RunFill(*arguments); });
}

void AddDescribe(CLI::App& app, int& code) {
  CLI::App* command = app.add_subcommand("describe", "prints a finished <package> for a file");
  auto arguments = std::make_shared<DescribeArguments>();
  Description& d = arguments->description;
  command->add_option("FILE", d.file)->required();
  command->add_option("--title", d.title, "its row in the list; by default the file's name");
  command->add_option("--group", d.group, "the group of rows that it belongs to");
  command->add_option("--tooltip", d.tooltip, "what is shown over its row");
  command->add_option("--name", d.name, "its folder below the installation folder; by default the title");
  command->add_option("--folder", d.folder, "a placeholder such as {gtasa_folder}, instead of --name");
  command->add_option("--filename", d.filename, "its identifier; by default the file's name");
  command->add_option("--filetype", arguments->filetype, "by default what the file looks like")
      ->check(CLI::IsMember({"zip", "installer", "file"}));
  AddRepeatable(command, "--url", arguments->urls,
                "KEY=URL: where a source has it; \"/\" at the end adds the filename");
  AddRepeatable(command, "--verify", d.verify, "a path that must be there afterwards; may be repeated");
  command->add_option("--install", d.install, "a program of the package that is run and waited for");
  command->add_option("--install-args", d.installArguments);
  command->add_option("--link", d.link, "a program of the package that gets a shortcut on the desktop");
  command->add_option("--link-title", d.linkTitle);
  command->add_option("--execute", d.execute, "a program of the package that is started at the end");
  command->add_option("--execute-args", d.executeArguments);
  AddRepeatable(command, "--addon", d.addons, "a built-in action, such as mtasa_config");
  command->add_flag("--default", d.isDefault, "its row is checked at first");
  command->callback([=, &code] { code = RunDescribe(*arguments); });
}

void AddUpdater(CLI::App& app, int& code) {
  CLI::App* command =
      app.add_subcommand("updater", "prints the <updater> that makes older programs replace themselves");
  auto arguments = std::make_shared<UpdaterArguments>();
  command->add_option("EXE", arguments->program)->required();
  AddRepeatable(command, "--url", arguments->urls, "where it can be downloaded; may be repeated")->required();
  command->add_option("--help-url", arguments->helpUrl, "the page for players whose update fails");
  command->callback([=, &code] { code = RunUpdater(*arguments); });
}

void AddCheckSite(CLI::App& app, int& code) {
  CLI::App* command = app.add_subcommand("check-site", "asks the site for everything that a manifest names");
  auto arguments = std::make_shared<CheckSiteArguments>();
  command->add_option("URL-OR-BASE", arguments->site, "https://HOST, or the address of the manifest itself")
      ->required();
  command->add_option("MANIFEST", arguments->manifest)->required();
  command->add_flag("--download", arguments->download, "read every file to its end and compare its md5");
  command->add_option("--cacert", arguments->caFile, "trust the certificates in this file instead of the system's");
  command->add_flag("--strict", arguments->strict, "count warnings as errors");
  command->add_flag("--json", arguments->json, "print one JSON object");
  command->callback([=, &code] { code = RunCheckSite(*arguments); });
}

// Names the options only: what stands behind one may be a password.
int RefuseExtras(const std::vector<std::string>& extras) {
  std::string unknown;
  for (const std::string& extra : extras) {
    if (extra.starts_with("--"))
      unknown += " " + extra.substr(0, extra.find('='));
    else if (extra.starts_with('-'))
      unknown += " " + extra.substr(0, 2);
  }
  std::cerr << "zendora-publish: "
            << (unknown.empty() ? "there are too many arguments" : "there is no such option:" + unknown)
            << "\nRun with --help for more information.\n";
  return kUnusable;
}

// The exit code, unless what was printed went nowhere.
int Flushed(int code) {
  std::cout.flush();
  if (std::cout) return code;
  std::cerr << "zendora-publish: the output can't be written\n";
  return kUnusable;
}

// The arguments in UTF-8, without the program's own name, in the order that the parser's vector form takes them.
int Main(std::vector<std::string> arguments) {
  CLI::App app(kAbout, "zendora-publish");
  app.footer(kExitCodes);
  app.require_subcommand(1);
  int code = kClean;
  AddCheck(app, code);
  AddFill(app, code);
  AddDescribe(app, code);
  AddUpdater(app, code);
  AddCheckSite(app, code);
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::ExtrasError&) {
    return RefuseExtras(app.remaining(true));
  } catch (const CLI::ParseError& error) {
    return Flushed(app.exit(error) == 0 ? kClean : kUnusable);
  }
  return Flushed(code);
}

// Out of memory, or a fault of ours.
int TellFailure(const std::exception& error) {
  std::fprintf(stderr, "zendora-publish: %s\n", error.what());
  return kUnusable;
}

}  // namespace

#ifdef _WIN32
int wmain(int count, wchar_t** values) try {
  SetConsoleOutputCP(CP_UTF8);
  std::vector<std::string> arguments;
  while (--count > 0) arguments.push_back(WideToUtf8(values[count]));
  return Main(std::move(arguments));
} catch (const std::exception& error) {
  return TellFailure(error);
}
#else
int main(int count, char** values) try {
  std::vector<std::string> arguments;
  while (--count > 0) arguments.emplace_back(values[count]);
  return Main(std::move(arguments));
} catch (const std::exception& error) {
  return TellFailure(error);
}
#endif
