// The generated document in the format of each reader.
#ifndef BENCH_DOCUMENT_DOCUMENT_TEXTS_H
#define BENCH_DOCUMENT_DOCUMENT_TEXTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// All texts are laid out as people write them, on lines of their own, indented by four blanks.
//
// Formats without units state the scaled number; formats without hexadecimal numbers state them in
// decimal. References are texts there, a list of them where there are several. Block types, and in
// JSON comments, are left out, which makes the other texts shorter.
std::string make_sbd_text(std::size_t parameter_count);
std::string make_json_text(std::size_t parameter_count);
std::string make_compact_json_text(std::size_t parameter_count);
std::string make_xml_text(std::size_t parameter_count);
std::string make_libconfig_text(std::size_t parameter_count);
std::string make_toml_text(std::size_t parameter_count);

// The full names of all parameters, in file order.
std::vector<std::string> make_parameter_names(std::size_t parameter_count);

// The full names of at most `sample` parameters that are whole numbers, in random order.
std::vector<std::string> make_number_names(std::size_t parameter_count, std::size_t sample);

// A name as the other formats can spell it: "region[0]" becomes "region_0".
std::string plain_name(std::string_view name);

#endif
