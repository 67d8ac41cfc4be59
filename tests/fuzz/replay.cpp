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

// Removes nothing, some bytes or the whole end, and puts something else there: nothing, a part of an input, another
// byte, or a number with the same bits.
void Spoil(std::string& bytes, Random& random, const Corpus& corpus) {
  const std::string& other = corpus[Below(random, corpus.size())];
  const size_t at = Below(random, bytes.size());
  const std::vector<size_t> removed = {0, 1, 4, Below(random, 64), std::string::npos};
  const size_t count = removed[Below(random, removed.size())];
  const char byte = static_cast<char>(random());
  const Corpus put = {"", PartOf(bytes, random), PartOf(other, random), {byte}, "\xFF\xFF\xFF\xFF", {0, 0, 0, 0}};
  bytes.replace(at, count, put[Below(random, put.size())]);
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
