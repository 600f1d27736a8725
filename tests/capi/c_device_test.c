#include <string.h>

#include "tests/capi/c_test.h"

static sbdc_device* make_device(const char* name) {
  sbdc_device* device = NULL;
  EXPECT_STATUS(sbdc_device_new(name, &device), SBDC_OK);
  return device;
}

static void read_parameters(const sbdc_device* device) {
  const sbdc_parameter* parameter = sbdc_device_find_parameter(device, "SDRAM.data_width");
  EXPECT(parameter != NULL);
  if (parameter == NULL) return;
  EXPECT_TEXT(parameter->name, "sdram.data_width");
  EXPECT(parameter->type == SBDC_TYPE_INTEGER);
  EXPECT(parameter->origin == SBDC_STATED);
  EXPECT(parameter->has_value == 1);
  EXPECT_NUMBER(parameter->number, 32);
  EXPECT(parameter->position.line > 1);

  parameter = sbdc_device_find_parameter(device, "clocks.input_clock_frequency");
  EXPECT(parameter != NULL && parameter->type == SBDC_TYPE_INTEGER);
  EXPECT(parameter != NULL && parameter->number > 1e6);
  parameter = sbdc_device_find_parameter(device, "endian");
  EXPECT(parameter != NULL && parameter->type == SBDC_TYPE_TEXT);
  EXPECT_TEXT(parameter->text, "little");
  EXPECT_TEXT(parameter->allowed, "one of: little, big");
  EXPECT(sbdc_device_find_parameter(device, "no.such_parameter") == NULL);
}

static void read_clocks(const sbdc_device* device) {
  double frequency = 0;
  uint32_t width = 0;
  EXPECT_STATUS(sbdc_device_clock(device, SBDC_AHB1, &frequency), SBDC_OK);
  EXPECT_NUMBER(frequency, 200e6);
  EXPECT_STATUS(sbdc_device_clock(device, SBDC_AHB2, &frequency), SBDC_OK);
  EXPECT_NUMBER(frequency, 100e6);
  EXPECT_STATUS(sbdc_device_clock(device, SBDC_SDRAM, &frequency), SBDC_OK);
  EXPECT(frequency > 1e6);
  EXPECT_STATUS(sbdc_device_clock(device, (sbdc_clock)9, &frequency), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_device_dpram_width(device, 0, &width), SBDC_OK);
  EXPECT(width == 8 || width == 16 || width == 32);
  EXPECT_STATUS(sbdc_device_dpram_width(device, 7, &width), SBDC_NOT_FOUND);
}

/* Every parameter can be found by its name, and what has no statement has no position. */
static void list_parameters(const sbdc_device* device) {
  const size_t count = sbdc_device_parameter_count(device);
  size_t stated = 0;
  size_t i = 0;
  EXPECT(count > 100);
  for (i = 0; i < count; i++) {
    const sbdc_parameter* const parameter = sbdc_device_parameter(device, i);
    EXPECT(sbdc_device_find_parameter(device, parameter->name) == parameter);
    EXPECT((parameter->position.line != 0) == (parameter->origin == SBDC_STATED));
    stated += parameter->origin == SBDC_STATED;
  }
  EXPECT(sbdc_device_parameter(device, count) == NULL);
  EXPECT(stated > 0);
}

static void read_defaults(void) {
  sbdc_device* const device = make_device("board");
  const sbdc_parameter* parameter = NULL;
  EXPECT_STATUS(sbdc_device_read(device, example("qmxa1_minimal.sbd")), SBDC_OK);
  EXPECT_TEXT(sbdc_device_chip(device), "qmxa1");
  parameter = sbdc_device_find_parameter(device, "sdram.enabled");
  EXPECT(parameter != NULL && parameter->origin == SBDC_ABSENT_BLOCK_DEFAULT);
  EXPECT(parameter != NULL && parameter->has_value == 1);
  EXPECT_NUMBER(parameter->number, 0);
  EXPECT_NUMBER(parameter->position.line, 0);
  list_parameters(device);
  sbdc_device_free(device);
}

void test_devices(void) {
  sbdc_device* const device = make_device("board");
  EXPECT_TEXT(sbdc_device_chip(device), "");
  EXPECT_NUMBER(sbdc_device_parameter_count(device), 0);
  EXPECT_STATUS(sbdc_device_read(device, example("qmxa10_full.sbd")), SBDC_OK);
  EXPECT_NUMBER(sbdc_device_finding_count(device), 0);
  EXPECT_TEXT(sbdc_device_chip(device), "qmxa10");
  EXPECT_TEXT(sbdc_device_module(device), "board.stripe");
  read_parameters(device);
  read_clocks(device);
  list_parameters(device);
  sbdc_device_free(device);
  read_defaults();
}

/* ---- Faults ---- */

static void find_faults_of_parameters(void) {
  sbdc_device* const device = make_device("board");
  size_t i = 0;
  size_t placed = 0;
  EXPECT_STATUS(sbdc_device_read(device, example("faulty_device.sbd")), SBDC_FAULTY);
  EXPECT_NUMBER(sbdc_device_finding_count(device), 54);
  EXPECT_NUMBER(sbdc_device_omitted_finding_count(device), 0);
  for (i = 0; i < sbdc_device_finding_count(device); i++) {
    const sbdc_finding* const finding = sbdc_device_finding_at(device, i);
    EXPECT(finding->number == 12 || finding->number == 13);
    EXPECT(finding->severity == SBDC_ERROR);
    EXPECT(sbdc_device_find_parameter(device, finding->parameter) != NULL);
    placed += finding->position.line != 0;
  }
  EXPECT_NUMBER(placed, 54);
  /* What could be read is there all the same. */
  EXPECT(sbdc_device_parameter_count(device) > 100);
  sbdc_device_free(device);
}

static void expect_fault(const char* device_name, const char* text, int number, const char* part) {
  sbdc_device* const device = make_device(device_name);
  const sbdc_finding* finding = NULL;
  double frequency = 0;
  EXPECT_STATUS(sbdc_device_read_text(device, text, strlen(text), "f.sbd"), SBDC_FAULTY);
  EXPECT_NUMBER(sbdc_device_finding_count(device), 1);
  finding = sbdc_device_finding_at(device, 0);
  EXPECT(finding != NULL && finding->number == number);
  EXPECT(finding != NULL && strstr(finding->text, part) != NULL);
  EXPECT_NUMBER(sbdc_device_parameter_count(device), 0);
  EXPECT_STATUS(sbdc_device_clock(device, SBDC_AHB1, &frequency), SBDC_NOT_FOUND);
  EXPECT_TEXT(sbdc_device_module(device), "");
  sbdc_device_free(device);
}

void test_faulty_devices(void) {
  find_faults_of_parameters();
  expect_fault("other", "device board { family = veldran_arm; type = qmxa1; }", 6, "other");
  expect_fault("board", "device board { family = x; type = qmxa1; }", 14, "x");
  expect_fault("board", "device board { a = ; }", 2, "syntax error");
  expect_fault("board",
               "device board { family = veldran_mips; type = qmxm4;"
               " module m { type = veldran_stripe; } }",
               0, "qmxm4");

  {
    /* After a good read, an unreadable file leaves no parameters behind. */
    sbdc_device* const device = make_device("board");
    EXPECT_STATUS(sbdc_device_read(device, example("qmxa1_minimal.sbd")), SBDC_OK);
    EXPECT_STATUS(sbdc_device_read(device, "no such file"), SBDC_UNREADABLE);
    EXPECT_NUMBER(sbdc_device_finding_count(device), 1);
    EXPECT_NUMBER(sbdc_device_parameter_count(device), 0);
    EXPECT_TEXT(sbdc_device_chip(device), "");
    sbdc_device_free(device);
  }
}

/* ---- Wrong use ---- */

void test_misuse(void) {
  const char* const no_targets[] = {NULL};
  sbdc_document* const document = make_document("device d { a = 1; }");
  sbdc_device* device = NULL;
  sbdc_listing* listing = NULL;
  sbdc_listing_view view;
  double number = 0;

  EXPECT_STATUS(sbdc_document_new(NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_read(NULL, "x"), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_read(document, NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_read_text(document, NULL, 0, "x"), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_get_number(NULL, "d.a", &number), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_get_number(document, NULL, &number), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_get_number(document, "d.a", NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_list(document, NULL, 0, &listing), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_list(document, NULL, 8, &listing), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_list(document, NULL, SBDC_BLOCK, NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_find(document, NULL, &listing), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_listing_get_view(NULL, &view), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_set_value(document, "d.a", NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_add_value(document, "d.b", "1", SBDC_BEFORE, NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_add_value(document, "d.b", "1", (sbdc_place)7, "a"), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_set_references(document, "d.r", no_targets, 1, SBDC_AT_END, NULL),
                SBDC_MISUSE);
  EXPECT_STATUS(sbdc_set_references(document, "d.r", NULL, 0, SBDC_AT_END, NULL), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_set_attributes(document, "d.a", no_targets, NULL, 1), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_rename(document, "d.a", NULL, 1), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_save(NULL, "x"), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_device_new(NULL, &device), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_device_new("", &device), SBDC_MISUSE);
  EXPECT_STATUS(sbdc_device_read(NULL, "x"), SBDC_MISUSE);
  EXPECT(sbdc_text(NULL, NULL) == NULL);
  EXPECT(sbdc_finding_at(NULL, 0) == NULL);
  EXPECT(sbdc_listing_item(NULL, 0) == NULL);
  EXPECT(sbdc_device_find_parameter(NULL, "x") == NULL);
  EXPECT_NUMBER(sbdc_finding_count(NULL) + sbdc_listing_size(NULL), 0);
  EXPECT_TEXT(sbdc_status_text((sbdc_status)99), "unknown status");

  /* Saving what was never a file asks for a path. */
  EXPECT_STATUS(sbdc_save(document, NULL), SBDC_REFUSED);
  sbdc_document_free(NULL);
  sbdc_device_free(NULL);
  sbdc_listing_free(NULL);
  sbdc_text_free(NULL);
  sbdc_document_free(document);
}
