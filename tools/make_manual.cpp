// Writes the manual pages of the tool into a folder: part of the build, not of the tool.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "sbd/sbd_api.h"
#include "tools/manual_page.h"
#include "tools/tool.h"

namespace {

bool write_page(const std::filesystem::path& folder, const std::string& name,
                const std::string& text) {
  const std::filesystem::path path = folder / (name + ".1");
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (file) return true;
  std::cerr << "can't write " << path.string() << '\n';
  return false;
}

bool write_pages(const std::filesystem::path& folder, const sbd_tool::MANUAL_ISSUE& issue) {
  // Pages of commands that are no more must not stay.
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const sbd_tool::COMMAND_DESCRIPTION tool = sbd_tool::describe_tool();
  bool is_good = write_page(folder, manual_page_name(tool), make_tool_page(tool, issue));
  for (const sbd_tool::COMMAND_DESCRIPTION& command : tool.commands) {
    const std::string page = make_command_page(command, issue);
    is_good = write_page(folder, manual_page_name(command), page) && is_good;
  }
  return is_good;
}

}  // namespace

int main(int argument_count, char** arguments) {
  if (argument_count != 3) {
    std::cerr << "usage: make_manual FOLDER DATE\n";
    return 2;
  }
  try {
    return write_pages(arguments[1], {sbd_version(), arguments[2]}) ? 0 : 1;
  } catch (const std::filesystem::filesystem_error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
