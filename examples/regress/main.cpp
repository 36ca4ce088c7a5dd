// examples/regress/main.cpp
//
// kxregress: weighted linear regression of a CSV file's column on others,
// computed with kxcommonr. Run it with --help for the options.
#include <iostream>
#include <string>
#include <vector>

#include "examples/regress/RegressCommand.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  return kxregress::RunRegress(args, std::cout, std::cerr);
}
