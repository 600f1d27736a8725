#include <libconfig.h++>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"

namespace {

using libconfig::Setting;

constexpr char NAME[] = "libconfig++";

void read(libconfig::Config& config, const std::string& text) {
  try {
    config.readString(text);
  } catch (const libconfig::ParseException& fault) {
    stop_measuring(NAME, fault.getError());
  }
}

std::uint64_t number_of(const Setting& setting) {
  return setting.getType() == Setting::TypeInt64
             ? static_cast<std::uint64_t>(static_cast<long long>(setting))
             : static_cast<unsigned>(setting);
}

std::string text_of(const Setting& setting) {
  std::vector<std::string> elements;
  switch (setting.getType()) {
    case Setting::TypeBoolean:
      return bool(setting) ? "true" : "false";
    case Setting::TypeString:
      return setting.c_str();
    case Setting::TypeArray:
      for (int i = 0; i < setting.getLength(); i++) elements.push_back(text_of(setting[i]));
      return list_text(elements);
    case Setting::TypeFloat:
      return number_text(double(setting));
    default:
      return number_text(static_cast<double>(number_of(setting)));
  }
}

class LIBCONFIG_READER : public READER {
 public:
  std::string library() const override {
    return std::string(NAME) + " " + std::to_string(LIBCONFIGXX_VER_MAJOR) + "." +
           std::to_string(LIBCONFIGXX_VER_MINOR);
  }

  std::string make_text(std::size_t parameter_count) const override {
    return make_libconfig_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    libconfig::Config config;
    read(config, text);
  }

  void read_file_and_free(const char* path) const override {
    libconfig::Config config;
    try {
      config.readFile(path);
    } catch (const libconfig::ConfigException& fault) {
      stop_measuring(NAME, fault.what());
    }
  }

  void keep(const std::string& text) override { read(m_config, text); }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) sum += number_of(m_config.lookup(path));
    return sum;
  }

  void write(std::FILE* stream) const override { m_config.write(stream); }

  std::string value_text(const std::string& path) const override {
    return m_config.exists(path) ? text_of(m_config.lookup(path)) : "";
  }

 private:
  libconfig::Config m_config;
};

}  // namespace

std::unique_ptr<READER> make_libconfig_reader() {
  return std::make_unique<LIBCONFIG_READER>();
}
