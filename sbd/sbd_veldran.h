// A descriptor seen as the setup of one Veldran device.
//
// SBD_VELDRAN is a document (SBD_FILE_PARSER) that is bound to one of its device blocks. Reading it
// also checks that block, finds the module that describes the processor stripe, and reads and
// validates every parameter by the rules of the chip. Afterwards it answers typed queries with
// defaults filled in, and what follows from the settings: clock frequencies and port widths.
//
// Nothing throws across this interface. Misuse goes to MSG_INTERNAL_ERROR::report as source
// "sbd_veldran". One thread uses an object at a time.
#ifndef SBD_SBD_VELDRAN_H
#define SBD_SBD_VELDRAN_H

#include <cstddef>
#include <cstdint>

#include "sbd/sbd_api.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_memory.h"
#include "sbd/sbd_parameter_reader.h"

// A document of which one device block is the device in question.
class SBD_API SBD_VELDRAN : public SBD_FILE_PARSER {
 public:
  // The families of devices.
  enum DEVICE_FAMILY : std::uint32_t { DF_ARM = 0, DF_MIPS = 1, DF_UNKNOWN = 2 };
  // The chips: three of the ARM-based family, three of the MIPS-based one.
  enum CHIP_TYPE : std::uint32_t {
    CT_QMXA10 = 0,
    CT_QMXA4 = 1,
    CT_QMXA1 = 2,
    CT_QMXM10 = 3,
    CT_QMXM4 = 4,
    CT_QMXM1 = 5,
    CT_UNKNOWN = 6
  };
  // The processors of the stripe.
  enum PROCESSOR_TYPE : std::uint32_t { PT_ARM = 0, PT_MIPS = 1, PT_UNKNOWN = 2 };

  // An empty document, bound to the device block of that name. Null or "" binds it to none: files
  // are then read as SBD_FILE_PARSER reads them, and there are no parameters.
  explicit SBD_VELDRAN(const char* device_name) noexcept;
  ~SBD_VELDRAN() override;

  // Reads the file as SBD_FILE_PARSER does; when that went well, goes on with the device block:
  //
  // - No device name, or no block in the file: true, without parameters.
  // - A device block that is not fit (see check_device): false, after posting why.
  // - No stripe module in it: true, without parameters. Several: the same, after posting
  //   SBD_VEL_MODULE_ERROR.
  // - A MIPS-based chip: false, without a message, since there are no rules for it.
  // - Otherwise the parameters are read and validated; false when any is missing or invalid, after
  //   one message for each.
  //
  // The document stays whatever the device layer says, and so do the parameters that were read.
  // Those of an earlier read are gone as soon as a read begins, also when its file can't be opened.
  bool read(const char* path) override;
  // The same for a text of `length` bytes that the caller holds; see SBD_FILE_PARSER.
  bool read_text(const char* text, std::size_t length, const char* name) override;

  // Binds the object to another device block of the document that it holds, and goes on as read
  // does behind the reading: what there was of the device before is gone, and the result and the
  // messages are those of read. Null or "" binds it to none. For files that describe several
  // devices; the document itself stays as it is.
  bool select_device(const char* device_name) noexcept;

  // Checks the device block; read calls it. Posts SBD_VEL_DEVICE_ERROR when there is no device
  // block of the name. Otherwise looks at both `family` and `type` and sets family, processor and
  // chip by them; a text that is not known sets them to unknown, a missing one leaves them. Posts
  // FAMILY_NOT_DEFINED_ERROR or UNSUPPORTED_FAMILY_ERROR for the family, and SBD_VEL_DEVICE_ERROR
  // for a chip that is not stated, not known or not of the family. False when anything was posted.
  // To call it without a device name is an internal error.
  bool check_device();

  // The full name of the one module block of type "veldran_stripe" in the device block. False when
  // there is none, and, after posting SBD_VEL_MODULE_ERROR, when there are several; the name is
  // then left as it was. To call it without a device name is an internal error.
  bool get_module_ref_name(SBD_STRING& module_name) const;

  // The `type` of the device block in lower case, whether it is a known chip or not. False, and
  // nothing written, when it is not stated or there is no device name.
  bool get_chip_type_name(SBD_STRING& chip_type) const;

  // What the last check_device found; unknown before.
  DEVICE_FAMILY get_family() const { return m_family; }
  CHIP_TYPE get_chip_type() const { return m_chip_type; }
  PROCESSOR_TYPE get_processor_type() const { return m_processor_type; }
  const SBD_STRING& get_device_name() const { return m_device_name; }

  // ---- Parameters --------------------------------------------------------------------------
  //
  // Parameters are named as in sbd/sbd_parameter_reader.h: relative to the stripe's module, such as
  // "sdram.data_width", in any letter case. They keep the values that read found, also when the
  // document is edited.

  // The value of a parameter. True when it has one, from the file or by default; otherwise false,
  // 0, 0.0 or "" is written. Internal errors: no parameters were read, and those of
  // SBD_PARAMETER_READER::get_parameter, such as a name that the chip does not have.
  bool get_parameter(const char* name, bool& value) const noexcept;
  bool get_parameter(const char* block, const char* name, bool& value) const noexcept;
  bool get_parameter(const char* name, unsigned long& value) const noexcept;
  bool get_parameter(const char* block, const char* name, unsigned long& value) const noexcept;
  bool get_parameter(const char* name, double& value) const noexcept;
  bool get_parameter(const char* block, const char* name, double& value) const noexcept;
  bool get_parameter(const char* name, SBD_STRING& value) const noexcept;
  bool get_parameter(const char* block, const char* name, SBD_STRING& value) const noexcept;

  // The parameters that the last read refused, one for each message it posted about a parameter, in
  // that order. The list lives until the next read or the object's end. While a message is posted,
  // the fault behind it is the last one, and get_fault_range tells its place: that of the
  // parameter's statement, or else the name of the innermost block where it belongs.
  const SBD_VECTOR<SBD_PARAMETER_FAULT>& get_parameter_faults() const noexcept;

  // What read the parameters, or null when none were. Owned by this object; gone with the next
  // read. sbd/sbd_parameter_rules.h answers more about each parameter.
  const SBD_PARAMETER_READER* get_parameter_reader() const { return m_parameter_reader; }

  // ---- Derived clocks and widths -------------------------------------------------------------
  //
  // Frequencies are in the unit of "clocks.input_clock_frequency" as read: hertz when the file
  // gives a unit of frequency. They are meant to be asked for after a read that was good. A divisor
  // of 0 gives an infinite result, or one that is not a number. Internal errors are those of
  // get_parameter.

  // The frequency of AHB bus 1 or 2: that of the AHB PLL, or of the input clock when the PLL is
  // bypassed, over the divider of the bus. False, and nothing written, when a setting has no value
  // or `ahb_n` is another number; 0 is also an internal error.
  bool get_ahb_clock_frequency(int ahb_n, double& frequency) const noexcept;

  // The frequency of the SDRAM: half that of the SDRAM PLL, or half the input clock when the PLL is
  // bypassed. False, and nothing written, when a setting has no value.
  bool get_sdram_clock_frequency(double& frequency) const noexcept;

  // The data width in bits of a DPRAM port, 0 or 1. Where both ports are combined it is their
  // common width, and 32 for one of 64; a port that is not in use has 32. A port beyond those of
  // the chip gives true and writes nothing. False, with a width of 0, when a setting has no value.
  bool get_dpram_data_width(int port, unsigned long& width) const noexcept;

 protected:
  SBD_STRING m_device_name;
  DEVICE_FAMILY m_family = DF_UNKNOWN;
  CHIP_TYPE m_chip_type = CT_UNKNOWN;
  PROCESSOR_TYPE m_processor_type = PT_UNKNOWN;
  SBD_PARAMETER_READER* m_parameter_reader = nullptr;  // Owned.

 private:
  friend class SBD_VELDRAN_PARAMETER_READER;  // Tells the places of its faults.
  bool read_device();
  void drop_reader() noexcept;
  bool check_family(const SBD_NODE* device_node);
  bool check_type(const SBD_NODE* device_node);
  const SBD_NODE* find_stripe() const;
  bool is_stripe(const SBD_NODE* node) const;
  void set_family(DEVICE_FAMILY family);
  bool get_text(const SBD_STRING& block, const char* parameter, SBD_STRING& text) const;
  const SBD_NODE* member_or_block(const SBD_NODE* block, const char* parameter) const;
  bool refuse_device(const SBD_NODE* place, const char* reason) const;
  template <class VALUE>
  bool get_value_of(const char* name, VALUE& value) const noexcept;
  template <class VALUE>
  bool get_value_of(const char* block, const char* name, VALUE& value) const noexcept;
};

#endif
