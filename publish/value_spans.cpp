#include "value_spans.h"

#include <algorithm>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// Walks through the tags of a text.
class TagScanner {
 public:
  explicit TagScanner(std::string_view text) : text_(text) {}

  PackageValues Scan() {
    while ((at_ = text_.find('<', at_)) < text_.size()) {
      if (SkipUnless("<!--", "-->") || SkipUnless("<![CDATA[", "]]>") || SkipUnless("<?", "?>") ||
          SkipUnless("<!", ">")) {
        continue;
      }
      text_.substr(at_).starts_with("</") ? CloseElement() : OpenElement();
    }
    return std::move(found_);
  }

 private:
  // Behind the end of what begins here with `open`; false when something else begins here.
  bool SkipUnless(std::string_view open, std::string_view close) {
    if (!text_.substr(at_).starts_with(open)) return false;
    MoveTo(text_.find(close, at_ + open.size()), close.size());
    return true;
  }

  void MoveTo(size_t position, size_t further = 0) {
    at_ = std::min(position, text_.size() - std::min(text_.size(), further)) + further;
  }

  void CloseElement() {
    MoveTo(text_.find('>', at_), 1);
    if (open_.size() == 2 && open_[1] == "packages") sectionDone_ = true;
    if (open_.size() == 1 && open_[0] == "downloader") rootDone_ = true;
    if (!open_.empty()) open_.pop_back();
  }

  void OpenElement() {
    const size_t begin = at_ + 1;
    MoveTo(text_.find_first_of(" \t\r\n/>", begin));
    open_.emplace_back(text_.substr(begin, at_ - begin));
    if (IsPackage()) ++found_.packageCount;
    while (ReadAttribute()) {
    }
    const bool empty = at_ < text_.size() && text_[at_] == '/';
    if (empty) {
      CloseElement();
    } else {
      MoveTo(at_, 1);
    }
  }

  // Reads one attribute and stops behind it; false at the end of the tag.
  bool ReadAttribute() {
    MoveTo(text_.find_first_not_of(kBlanks, at_));
    if (at_ >= text_.size() || text_[at_] == '/' || text_[at_] == '>') return false;
    const std::string_view name = text_.substr(at_, text_.find_first_of(" \t\r\n=", at_) - at_);
    const size_t quote = std::min(text_.find_first_of("\"'", at_), text_.size() - 1);
    const size_t end = std::min(text_.find(text_[quote], quote + 1), text_.size());
    if (name == "value" && open_.size() == 4 && InPackages()) {
      const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(quote), '\n');
      found_.spans.push_back({found_.packageCount - 1, open_.back(), static_cast<int>(line), quote + 1, end});
    }
    MoveTo(end, 1);
    return true;
  }

  // Of the root and of its sections the program takes the first.
  bool InPackages() const {
    return !rootDone_ && !sectionDone_ && open_.size() >= 3 && open_[0] == "downloader" && open_[1] == "packages" &&
           open_[2] == "package";
  }
  bool IsPackage() const { return open_.size() == 3 && InPackages(); }

  std::string_view text_;
  size_t at_ = 0;
  std::vector<std::string> open_;  // names of the elements around
  bool rootDone_ = false, sectionDone_ = false;
  PackageValues found_;
};

}  // namespace

PackageValues FindPackageValues(std::string_view text) { return TagScanner(text).Scan(); }
