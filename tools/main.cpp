#include "tools/tool.h"

int main(int argument_count, char** arguments) {
  return sbd_tool::run_tool(argument_count, arguments);
}
