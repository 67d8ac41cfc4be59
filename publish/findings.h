// What a command finds wrong with what is to be published, and how it is told. Texts are UTF-8 or, where they quote
// what is not, its bytes.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

// A note tells something and counts for nothing; an error is what a player would meet.
enum class Severity { Note, Warning, Error };

struct Finding {
  Severity severity = Severity::Error;
  int line = 0;         // of the manifest, from 1; 0 where no line can be named
  std::string subject;  // the package's identifier; empty where it is about none
  std::string check;    // the name of what found it
  std::string message;
};

// All findings about one manifest.
struct Findings {
  std::string file;  // the manifest, as the user named it
  std::vector<Finding> list;
};

// Collects what one check finds about one subject.
class Reporter {
 public:
  Reporter(Findings& findings, std::string_view check, std::string_view subject = "")
      : findings_(&findings), check_(check), subject_(subject) {}

  Reporter About(std::string_view subject) const { return {*findings_, check_, subject}; }

  void Tell(Severity severity, int line, std::string message) const;
  void Error(int line, std::string message) const { Tell(Severity::Error, line, std::move(message)); }
  void Warning(int line, std::string message) const { Tell(Severity::Warning, line, std::move(message)); }
  void Note(int line, std::string message) const { Tell(Severity::Note, line, std::move(message)); }

 private:
  Findings* findings_;
  std::string check_, subject_;
};

size_t CountOf(const Findings& findings, Severity severity);

// One line for each finding, in the order of the manifest's lines: "file:line: error: subject: message [check]", and a
// last line with the counts. Control characters in what is quoted become "?".
void PrintFindings(std::ostream& out, const Findings& findings);

// The same as one JSON object: "file", "errors", "warnings", and "findings" with a member for each field.
void PrintFindingsAsJson(std::ostream& out, const Findings& findings);

// "1 error", "2 errors", "2 addresses".
std::string Counted(size_t count, const std::string& what);

// In quotation marks, as messages quote names and values; what is very long is cut.
std::string Quoted(std::string_view text);

// A name out of a manifest or an archive, or several in a message, so that they can't steer the terminal that shows
// them: control characters become "?".
std::string Printable(std::string_view text);
