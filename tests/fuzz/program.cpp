// A program file, whose version zendora-publish reads.
#include "program_file.h"

#include "fuzz/fuzzing.h"

void FuzzOne(const std::string& input) {
  const ProgramFile program = ReadProgramBytes(input);
  if (!program.isProgram)
    Require(!program.is32Bit && program.productVersion.empty(), "what is no program says nothing");
  // Each of its characters takes two bytes in the file, and three at most in UTF-8.
  Require(program.productName.size() <= input.size() * 3 / 2, "a name is no longer than its program");
}
