// The files that a command line means by the files and folders it names.
#ifndef TOOLS_FILE_SEARCH_H
#define TOOLS_FILE_SEARCH_H

#include <string>
#include <vector>

namespace sbd_tool {

// What the names of descriptor files end in, as far as folders are searched for them.
inline constexpr char k_descriptor_extension[] = ".sbd";

struct FILE_SEARCH {
  std::vector<std::string> files;
  // Folders that have no descriptor file in them, and ones that can't be read, with the reason.
  std::vector<std::string> empty_folders;
  std::vector<std::pair<std::string, std::string>> unreadable_folders;
};

// Puts in the place of each folder all descriptor files in it and in the folders below it, in
// alphabetical order by path, and leaves all other names as they are. Symbolic links are followed,
// but no folder is searched twice for one name of the command line; names that begin with a dot are
// passed over.
FILE_SEARCH search_files(const std::vector<std::string>& names);

}  // namespace sbd_tool

#endif
