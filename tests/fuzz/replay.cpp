// Runs a fuzzer over its corpus, and over so many inputs made from it, the same ones every time. For compilers without
// libFuzzer, and to keep corpora and fuzzers from rotting.
//   fuzz_NAME FOLDER COUNT
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

constexpr size_t kMaxSize = 8192;

using Random = std::mt19937;
using Corpus = std::vector<std::string>;

size_t Below(Random& random, size_t limit) { return limit == 0 ? 0 : random() % limit; }

std::string PartOf(const std::string& bytes, Random& random) {
  const size_t at = Below(random, bytes.size());
  return bytes.substr(at, Below(random, 64));
}

// Changes a byte, removes a part, doubles a part, cuts the end off, puts in a part of another input, or fills a number
// with bits.
void Spoil(std::string& bytes, Random& random, const Corpus& corpus) {
  const size_t at = Below(random, bytes.size());
  switch (random() % 6) {
    case 0:
      if (!bytes.empty()) bytes[at] = static_cast<char>(random());
      break;
    case 1:
      bytes.erase(at, Below(random, 64));
      break;
    case 2:
      bytes.insert(at, PartOf(bytes, random));
      break;
    case 3:
      bytes.resize(at);
      break;
    case 4:
      bytes.insert(at, PartOf(corpus[Below(random, corpus.size())], random));
      break;
    default:
      bytes.replace(at, 4, std::string(std::min<size_t>(bytes.size() - at, 4), random() % 2 ? '\xFF' : '\0'));
  }
}

std::string Spoilt(std::string bytes, Random& random, const Corpus& corpus) {
  for (size_t faults = 1 + Below(random, 4); faults > 0; --faults) Spoil(bytes, random, corpus);
  bytes.resize(std::min(bytes.size(), kMaxSize));
  return bytes;
}

Corpus ReadCorpus(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) files.push_back(entry.path());
  std::ranges::sort(files);  // the same order everywhere
  Corpus corpus;
  for (const auto& path : files) {
    std::ifstream file(path, std::ios::binary);
    corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return corpus;
}

void Run(const std::string& input) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  const Corpus corpus = ReadCorpus(argv[1]);
  if (corpus.empty()) {
    std::fprintf(stderr, "%s is empty\n", argv[1]);
    return EXIT_FAILURE;
  }
  for (const std::string& input : corpus) Run(input);
  Random random(1);
  for (long i = std::strtol(argv[2], nullptr, 10); i > 0; --i) {
    Run(Spoilt(corpus[Below(random, corpus.size())], random, corpus));
  }
}
