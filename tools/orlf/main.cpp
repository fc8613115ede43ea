#include <iostream>
#include <string>
#include <vector>

#include "tool.h"

int main(int count, char** arguments) {
  std::ios::sync_with_stdio(false);
  return orlftool::runTool(std::vector<std::string>(arguments + (count > 0), arguments + count),
                           std::cout, std::cerr);
}
