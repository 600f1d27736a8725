// Findings about the stripe of a device, as short texts.
#ifndef TESTS_TOOL_ADVICE_SUPPORT_H
#define TESTS_TOOL_ADVICE_SUPPORT_H

#include <string>
#include <vector>

#include "tests/tool/device_support.h"
#include "tools/file_check.h"

class ADVICE_TEST : public DEVICE_TEST {
 protected:
  // The statements stand in a good stripe; see board_with.
  sbd_tool::CHECKED_FILE check(const std::string& statements, const std::string& chip = "qmxa10") {
    const std::string clocks = statements.find("clocks") == std::string::npos ? k_good_clocks : "";
    return sbd_tool::check_file(
        m_files.write("test.sbd", board_with(clocks + "\n" + statements, "board", chip)),
        m_options);
  }

  // The texts of the findings of that key, each with note and mend behind it.
  std::vector<std::string> find(const char* key, const std::string& statements,
                                const std::string& chip = "qmxa10") {
    std::vector<std::string> texts;
    for (const sbd_tool::FINDING& finding : check(statements, chip).findings.list) {
      if (finding.key != key) continue;
      std::string text = finding.text;
      if (!finding.note.empty()) text += "; " + finding.note;
      if (!finding.mend.empty()) text += "; " + finding.mend;
      texts.push_back(text);
    }
    return texts;
  }

  sbd_tool::CHECK_OPTIONS m_options;

 private:
  TEMPORARY_DIRECTORY m_files;
};

#endif
