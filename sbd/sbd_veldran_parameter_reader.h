// The parameters of the Veldran family and how they are judged.
//
// SBD_VELDRAN_PARAMETER_READER knows every parameter of the family from four tables and walks them
// to read and to validate; the classes below it hold the rules of the ARM-based chips. SBD_VELDRAN
// makes the right one for a descriptor; sbd/sbd_parameter_rules.h answers what the rules are.
//
// Conventions are those of sbd/sbd_parameter_reader.h; internal errors name the source
// "sbd_veldran_parameter_reader".
#ifndef SBD_SBD_VELDRAN_PARAMETER_READER_H
#define SBD_SBD_VELDRAN_PARAMETER_READER_H

#include <cstddef>
#include <cstdint>

#include "sbd/sbd_api.h"
#include "sbd/sbd_memory.h"
#include "sbd/sbd_parameter_reader.h"

class SBD_VELDRAN;
struct SBD_PREPARED_NAME;

// One row of a parameter table.
//
// A parameter has one row, or several with different chips. The row that marks the end of a table
// has no parameter name.
template <class VALUE>
struct SBD_PARAMETER_ROW {
  const char* block_name;      // Path below the stripe's module; null for the module itself.
  const char* parameter_name;  // Null behind the last row.
  unsigned long device_mask;   // Chips that the row is for: 1 QMXA1, 2 QMXA4, 4 QMXA10.
  bool has_default;            // The two defaults below count.
  bool validate_value;         // The value has to obey a rule.
  unsigned long requirement;   // A SBD_VELDRAN_PARAMETER_READER::REQUIRED.
  VALUE default_value;         // For a parameter that its block does not state; null: none.
  VALUE absent_block_value;    // For a parameter whose block is not there; null: none.
};

// What all chips of the devices have in common.
class SBD_API SBD_VELDRAN_PARAMETER_READER : public SBD_PARAMETER_READER {
 public:
  // When the descriptor has to state a parameter. A default does not stand in for it.
  enum REQUIRED : std::uint32_t { RQ_OPTIONAL = 0, RQ_ALWAYS = 1, RQ_BY_RULE = 2 };

  using BOOL_ROW = SBD_PARAMETER_ROW<bool>;            // A Boolean.
  using DWORD_ROW = SBD_PARAMETER_ROW<unsigned long>;  // 32 bits.
  using DOUBLE_ROW = SBD_PARAMETER_ROW<double>;        // A floating number.
  using STRING_ROW = SBD_PARAMETER_ROW<const char*>;   // The texts are those of the keywords.

  // How many parameters of each type there are.
  static constexpr std::size_t k_bool_rows = 59;
  static constexpr std::size_t k_dword_rows = 64;
  static constexpr std::size_t k_double_rows = 10;
  static constexpr std::size_t k_string_rows = 20;

  // The parameters of the family, in the order in which they are read and validated; each table is
  // followed by its end marker.
  static const BOOL_ROW sbd_veldran_bool_parameters[k_bool_rows + 1];
  static const DWORD_ROW sbd_veldran_dword_parameters[k_dword_rows + 1];
  static const DOUBLE_ROW sbd_veldran_double_parameters[k_double_rows + 1];
  static const STRING_ROW sbd_veldran_string_parameters[k_string_rows + 1];

  // A reader of the stripe module named `module_name` of `device`, which must outlive it. It
  // reports lookups of names that were never read.
  SBD_VELDRAN_PARAMETER_READER(const SBD_VELDRAN& device, const SBD_STRING& module_name) noexcept;
  ~SBD_VELDRAN_PARAMETER_READER() override;

  // Reads the parameters of all rows that are for this chip: those of the bool, dword, double and
  // string tables, in this order. Always true, unless the host runs out of memory.
  bool read_all_parameters() override;

  // Validates the parameters of the same rows in the same order. Posts one message for each row
  // whose parameter is missing or invalid; false when there was any.
  bool validate_all_parameters() override;

  // ---- What the rules of family and chip decide ------------------------------------------------
  //
  // `name` is a parameter's reference in lower case. Each returns false, and leaves the output as
  // it is, when there is no rule for that name.

  // Whether the parameter has to be stated, as the settings are.
  virtual bool is_family_specific_parameter_required(const SBD_STRING& name,
                                                     bool& required) const = 0;
  virtual bool is_device_specific_parameter_required(const SBD_STRING& name,
                                                     bool& required) const = 0;

  // Whether the value that was read for the parameter is good.
  virtual bool validate_family_specific_parameter(const SBD_STRING& name, bool& valid) const = 0;
  virtual bool validate_device_specific_parameter(const SBD_STRING& name, bool& valid) const = 0;

  // True when the chip's bit is set in a row's `device_mask`.
  virtual bool is_for_this_device(unsigned long device_mask) const = 0;

  // ---- Validation of one parameter -----------------------------------------------------------

  // Whether the rules require a parameter now. One without a rule is an internal error and counts
  // as required.
  bool is_parameter_required(const SBD_STRING& name) const noexcept;

  // Judges one parameter, given what its lookup said and its row's `requirement` and
  // `validate_value`, and marks it as validated. False, after posting SBD_PARAMETER_MISSING_ERROR
  // for one that is required and not defined, or SBD_PARAMETER_VALUE_ERROR for one that is defined
  // without a value or with one that the rules refuse. The value of a parameter required by rule is
  // held against the rules only while it is required.
  bool validate_parameter(const SBD_STRING& name, bool is_defined, bool has_value,
                          REQUIRED requirement, bool validate_value) noexcept;

  // Holds the value that was read for a parameter against its rule and marks it as validated. One
  // without a rule is an internal error, counts as valid and is not marked.
  bool is_parameter_value_valid(const SBD_STRING& name) noexcept;

 private:
  template <class ROW>
  bool validate_rows(const ROW* row, const SBD_PREPARED_NAME* names);
  bool judge_parameter(const SBD_STRING& name, bool is_defined, bool has_value,
                       REQUIRED requirement, bool validate_value);
  void report_fault(const SBD_STRING& name, bool is_missing);
};

// The rules that all ARM-based chips share. What it does not know it asks the chip's reader.
class SBD_API SBD_QMXA_BASE_PARAMETER_READER : public SBD_VELDRAN_PARAMETER_READER {
 public:
  // As that of the base class.
  SBD_QMXA_BASE_PARAMETER_READER(const SBD_VELDRAN& device, const SBD_STRING& module_name) noexcept;
  ~SBD_QMXA_BASE_PARAMETER_READER() override;

  bool is_family_specific_parameter_required(const SBD_STRING& name, bool& required) const override;
  bool validate_family_specific_parameter(const SBD_STRING& name, bool& valid) const override;
};

// The reader of the chip qmxa1.
class SBD_API SBD_QMXA1_PARAMETER_READER : public SBD_QMXA_BASE_PARAMETER_READER {
 public:
  // As that of the base class.
  SBD_QMXA1_PARAMETER_READER(const SBD_VELDRAN& device, const SBD_STRING& module_name) noexcept;
  ~SBD_QMXA1_PARAMETER_READER() override;

  bool is_device_specific_parameter_required(const SBD_STRING& name, bool& required) const override;
  bool validate_device_specific_parameter(const SBD_STRING& name, bool& valid) const override;
  bool is_for_this_device(unsigned long device_mask) const override;
};

// The reader of the chip qmxa4.
class SBD_API SBD_QMXA4_PARAMETER_READER : public SBD_QMXA_BASE_PARAMETER_READER {
 public:
  // As that of the base class.
  SBD_QMXA4_PARAMETER_READER(const SBD_VELDRAN& device, const SBD_STRING& module_name) noexcept;
  ~SBD_QMXA4_PARAMETER_READER() override;

  bool is_device_specific_parameter_required(const SBD_STRING& name, bool& required) const override;
  bool validate_device_specific_parameter(const SBD_STRING& name, bool& valid) const override;
  bool is_for_this_device(unsigned long device_mask) const override;
};

// The reader of the chip qmxa10.
class SBD_API SBD_QMXA10_PARAMETER_READER : public SBD_QMXA_BASE_PARAMETER_READER {
 public:
  // As that of the base class.
  SBD_QMXA10_PARAMETER_READER(const SBD_VELDRAN& device, const SBD_STRING& module_name) noexcept;
  ~SBD_QMXA10_PARAMETER_READER() override;

  bool is_device_specific_parameter_required(const SBD_STRING& name, bool& required) const override;
  bool validate_device_specific_parameter(const SBD_STRING& name, bool& valid) const override;
  bool is_for_this_device(unsigned long device_mask) const override;
};

#endif
