/* The C interface: descriptors and devices for programs in C, and for other languages on top of it.
 *
 *   sbdc_document* document = NULL;
 *   double width = 0;
 *   if (sbdc_document_new(&document) == SBDC_OK &&
 *       sbdc_read(document, "board.sbd") == SBDC_OK &&
 *       sbdc_get_number(document, "board.stripe.sdram.data_width", &width) == SBDC_OK) {
 *     printf("%g\n", width);
 *   }
 *   sbdc_document_free(document);
 *
 * Everything is in libsbd_c: the library, and host services that belong to it alone. Message
 * handlers and memory managers that the program installs for the C++ libraries have nothing to do
 * with it, and are not disturbed by it.
 *
 * Results. Functions that can fail return a status. What there is to say about a failure is kept as
 * findings in the handle: nothing is printed, and no function is called back. Outputs are written
 * when the status is SBDC_OK, and otherwise left as they were, unless something else is said.
 *
 * Texts are in UTF-8 and end with NUL. Paths are taken as the bytes that they are. Names of blocks
 * and parameters are full names, such as "board.stripe.sdram.data_width", in any letter case,
 * unless something else is said.
 *
 * Ownership. A handle belongs to the caller, who frees it; freeing NULL does nothing. What a
 * function returns a pointer to belongs to the handle, and is valid as long as that function says.
 *
 * Threads. Different handles may be used in different threads at the same time. One handle is used
 * by one thread at a time, except that functions with a const handle may run side by side as long
 * as no other function is called for it. A listing never changes.
 *
 * Null handles and null names give SBDC_MISUSE, NULL or 0. */
#ifndef SBD_C_H
#define SBD_C_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define SBDC_API __attribute__((visibility("default")))
#else
#define SBDC_API
#endif

/* Callers may hand over any number, in C++ as in C, and are told when it means nothing. */
#ifdef __cplusplus
#define SBDC_ANY_NUMBER : int
#else
#define SBDC_ANY_NUMBER
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What became of a call. */
typedef enum sbdc_status SBDC_ANY_NUMBER {
  SBDC_OK = 0,
  SBDC_FAULTY = 1,     /* The text was read, and has faults: see the findings. */
  SBDC_UNREADABLE = 2, /* The file can't be opened or read. */
  SBDC_REFUSED = 3,    /* The edit or the saving was refused: see the findings. */
  SBDC_NOT_FOUND = 4,  /* There is nothing of that name, or it has no value. */
  SBDC_WRONG_KIND = 5, /* There is, but not of the kind that was asked for. */
  SBDC_MISUSE = 6,     /* An argument is null or out of range. */
  SBDC_NO_MEMORY = 7,  /* The memory is exhausted; what was to be changed is as it was. */
  SBDC_INTERNAL = 8    /* A fault of the library itself: see the findings. */
} sbdc_status;

/* A short text in English for a status, such as "not found". Lives for ever. */
SBDC_API const char* sbdc_status_text(sbdc_status status);

/* The version of the library that is running, such as "0.1.0". Lives for ever. */
SBDC_API const char* sbdc_version(void);

/* A place in the text of a file as it was read. Offset and length are in bytes, the offset counts
 * from 0; line and column count from 1, columns in bytes. A line of 0 means that there is none. */
typedef struct sbdc_position {
  uint32_t offset; /* From 0 on. */
  uint32_t length; /* In bytes. */
  uint32_t line;   /* From 1 on; 0 for no place. */
  uint32_t column; /* From 1 on. */
} sbdc_position;

/* ---- Findings ------------------------------------------------------------------------------ */

/* How grave a finding is. */
typedef enum sbdc_severity {
  SBDC_ERROR = 0,
  SBDC_WARNING = 1,
  SBDC_INTERNAL_ERROR = 2 /* A condition of the library's own code that did not hold. */
} sbdc_severity;

/* Something that the library has to say. */
typedef struct sbdc_finding {
  sbdc_severity severity; /* How grave it is. */
  int32_t number;         /* The number of the message; 0 for one that is not in the catalogue. */
  const char* key;        /* Its key, such as "ESBD_SBD_SYNTAX_ERROR"; "" without a number. */
  const char* text;       /* What it says, in English. */
  const char* parameter;  /* The parameter of a device that it is about, as in sbdc_parameter.name;
                             "" for all other findings. */
  sbdc_position position; /* Where in the file; line 0 when it is about no place in it. */
} sbdc_finding;

/* ---- Documents ----------------------------------------------------------------------------- */

/* One descriptor file: its text, and the tree of blocks and parameters in it. */
typedef struct sbdc_document sbdc_document;

/* An empty document; the caller frees it. */
SBDC_API sbdc_status sbdc_document_new(sbdc_document** document);
SBDC_API void sbdc_document_free(sbdc_document* document);

/* Reads the file at `path`, or a text of `length` bytes in which `name` stands for the file,
 * instead of what the document holds; the text is copied. SBDC_FAULTY for a text with faults: the
 * document is then empty, and there is a finding for each. SBDC_UNREADABLE leaves the document as
 * it was. A transaction that is under way ends. */
SBDC_API sbdc_status sbdc_read(sbdc_document* document, const char* path);
SBDC_API sbdc_status sbdc_read_text(sbdc_document* document, const char* text, size_t length,
                                    const char* name);

/* The findings of the last function that was called with this document and that is not const, in
 * the order in which they came. Number `index`, or NULL from `sbdc_finding_count` on. They are
 * valid until the next such function. Of very many, the first 10000 are kept, and the rest counted.
 */
SBDC_API size_t sbdc_finding_count(const sbdc_document* document);
SBDC_API size_t sbdc_omitted_finding_count(const sbdc_document* document);
SBDC_API const sbdc_finding* sbdc_finding_at(const sbdc_document* document, size_t index);

/* The text as edited; its length in bytes without the NUL goes to `length`, unless that is null.
 * Valid until the next function with this document that is not const. NULL when there is no memory
 * for it. (It is put together at the first call after an edit: that is why it isn't const.) */
SBDC_API const char* sbdc_text(sbdc_document* document, size_t* length);

/* ---- Typed queries ------------------------------------------------------------------------- */

/* A number times its unit: K is 1024, M 1024 K, G 1024 M, Hz 1, MHz 1000000. */
SBDC_API sbdc_status sbdc_get_number(const sbdc_document* document, const char* name,
                                     double* number);
/* The same for numbers that are whole then, and lie within the range of the type. */
SBDC_API sbdc_status sbdc_get_integer(const sbdc_document* document, const char* name,
                                      int64_t* number);
/* 1 for true, 0 for false. */
SBDC_API sbdc_status sbdc_get_bool(const sbdc_document* document, const char* name, int* value);
/* The text of a string or a word, without its quotes. The caller frees it with sbdc_text_free. */
SBDC_API sbdc_status sbdc_get_text(const sbdc_document* document, const char* name, char** text);
SBDC_API void sbdc_text_free(char* text);

/* ---- Listings ------------------------------------------------------------------------------ */

/* How a value is written. */
typedef enum sbdc_value_kind {
  SBDC_DECIMAL = 0, /* Whole numbers from 0 to 4294967295 in four bases. */
  SBDC_OCTAL = 1,
  SBDC_HEXADECIMAL = 2,
  SBDC_BINARY = 3,
  SBDC_FLOAT = 4,
  SBDC_BOOLEAN = 5,
  SBDC_STRING = 6, /* A text in double quotes. */
  SBDC_LIST = 7,
  SBDC_REFERENCES = 8, /* The value of a reference statement: a list of SBDC_REFERENCE. */
  SBDC_REFERENCE = 9,
  SBDC_NO_VALUE = 10, /* That of a block. */
  SBDC_WORD = 11      /* A text without quotes. */
} sbdc_value_kind;

/* What stands behind a number. */
typedef enum sbdc_unit {
  SBDC_NO_UNIT = 0,
  SBDC_K = 1,
  SBDC_M = 2,
  SBDC_G = 3,
  SBDC_HZ = 4,
  SBDC_MHZ = 5
} sbdc_unit;

/* A value, or an element of one. */
typedef struct sbdc_value {
  sbdc_value_kind kind; /* How it is written; tells which of the members below count. */
  sbdc_unit unit;       /* Numbers; else SBDC_NO_UNIT. */
  double number;        /* Numbers: times the unit. SBDC_BOOLEAN: 1 or 0. Otherwise 0. */
  double unscaled;      /* Numbers: as written. */
  const char* text;     /* SBDC_STRING: without its quotes. SBDC_REFERENCE: as written. Else "". */
  const char* target;   /* SBDC_REFERENCE: the full name of what it refers to. Else "". */
  uint32_t first_element; /* SBDC_LIST and SBDC_REFERENCES: see sbdc_listing_element. */
  uint32_t element_count; /* Of that list; 0 for other kinds. */
  sbdc_position position; /* With its unit, quotes or braces. */
} sbdc_value;

/* An attribute of a parameter. */
typedef struct sbdc_attribute {
  const char* key;        /* As written. */
  const char* value;      /* NULL for a bare key. */
  sbdc_position position; /* Key and value. */
} sbdc_attribute;

/* What an item is; one bit each. */
typedef enum sbdc_item_kind {
  SBDC_BLOCK = 1,
  SBDC_PARAMETER = 2, /* An assignment. */
  SBDC_REFERENCE_STATEMENT = 4
} sbdc_item_kind;

/* A block or a statement. */
typedef struct sbdc_item {
  const char* name;            /* The full name, spelled as declared. */
  const char* type;            /* SBDC_BLOCK: the type keyword as written. Else "". */
  sbdc_item_kind kind;         /* Which of the members below count. */
  uint32_t depth;              /* How many blocks are around it. */
  sbdc_position position;      /* A block to its "}", a statement to its ";". */
  sbdc_position name_position; /* The declared name. */
  sbdc_value value;            /* Of a block: SBDC_NO_VALUE. */
  uint32_t first_attribute;    /* See sbdc_listing_attribute. */
  uint32_t attribute_count;    /* SBDC_PARAMETER; else 0. */
} sbdc_item;

/* A picture of a document, or of a part of it, at the time when it was made: later edits do not
 * change it, and it outlives the document. All pointers that lead out of it or into it are valid
 * until it is freed. Things that were edited since the file was read may have no position. */
typedef struct sbdc_listing sbdc_listing;

/* Everything below the block named `scope` (NULL or "": in the document), a block before what is in
 * it. `kinds` is one sbdc_item_kind or several, combined with "|". */
SBDC_API sbdc_status sbdc_list(const sbdc_document* document, const char* scope, unsigned kinds,
                               sbdc_listing** listing);
/* The block or statement of that name, alone. */
SBDC_API sbdc_status sbdc_find(const sbdc_document* document, const char* name,
                               sbdc_listing** listing);
SBDC_API void sbdc_listing_free(sbdc_listing* listing);

/* Item number `index`, in file order, or NULL from `sbdc_listing_size` on. */
SBDC_API size_t sbdc_listing_size(const sbdc_listing* listing);
SBDC_API const sbdc_item* sbdc_listing_item(const sbdc_listing* listing, size_t index);

/* Element number `index` of all lists: those of one value have the numbers from its `first_element`
 * on. Attribute number `index` of all items: those of one have the numbers from its
 * `first_attribute` on. NULL beyond the last one. */
SBDC_API const sbdc_value* sbdc_listing_element(const sbdc_listing* listing, size_t index);
SBDC_API const sbdc_attribute* sbdc_listing_attribute(const sbdc_listing* listing, size_t index);

/* For languages that would rather copy at once than call for each item. The items lie one behind
 * the other, `item_size` bytes apart, and so do their names in the same order, each with its NUL;
 * all names together have `name_length` bytes. */
typedef struct sbdc_listing_view {
  const sbdc_item* items; /* The first one; may be NULL when there are none. */
  size_t item_count;      /* How many there are. */
  size_t item_size;       /* Bytes from one to the next: sizeof(sbdc_item) or more. */
  const char* names;      /* The first one's; may be NULL when there are none. */
  size_t name_length;     /* Of all names, in bytes. */
} sbdc_listing_view;
SBDC_API sbdc_status sbdc_listing_get_view(const sbdc_listing* listing, sbdc_listing_view* view);

/* A way through what sbdc_list would give, in parts: a large document need not be listed as a
 * whole. It ends with the next function with the document that is not const, or when the document
 * is freed: sbdc_walk_next gives SBDC_MISUSE in the one case, and must not be called in the other.
 * The listings that it gave stay, as listings do. */
typedef struct sbdc_walk sbdc_walk;

/* A walk from the begin on; the caller frees it. */
SBDC_API sbdc_status sbdc_walk_new(const sbdc_document* document, const char* scope, unsigned kinds,
                                   sbdc_walk** walk);
SBDC_API void sbdc_walk_free(sbdc_walk* walk);

/* The next items, `most` of them or all that are left, as a listing of their own, which the caller
 * frees. SBDC_NOT_FOUND when none are left, and SBDC_MISUSE for a `most` of 0. A walk that has
 * failed may leave items out. */
SBDC_API sbdc_status sbdc_walk_next(sbdc_walk* walk, size_t most, sbdc_listing** listing);

/* ---- Edits --------------------------------------------------------------------------------- */

/* Edits change what they are about, and leave every other byte of the text as it was typed. A
 * refused edit gives SBDC_REFUSED, with findings that tell why, and changes nothing. */

/* Where something new is put among the members of its block. */
typedef enum sbdc_place SBDC_ANY_NUMBER {
  SBDC_AT_END = 0,
  SBDC_BEFORE = 1,
  SBDC_BEHIND = 2
} sbdc_place;

/* Sets a parameter to a value in the notation of the format: 32, 0x40K, 50MHz, -1.5, true, name,
 * "a text", {1, {2, 3K}}. It must be of a kind that the present value can give way to; numbers and
 * lists may take each other's place. A new parameter is added at the end of its block. */
SBDC_API sbdc_status sbdc_set_value(sbdc_document* document, const char* name, const char* value);

/* Adds a parameter that does not exist yet, at the end of its block, or right before or behind the
 * member named `sibling` (its own name in the block; ignored, and may be NULL, with SBDC_AT_END).
 */
SBDC_API sbdc_status sbdc_add_value(sbdc_document* document, const char* name, const char* value,
                                    sbdc_place place, const char* sibling);

/* Sets the `count` names of a reference statement, full names of what is there. A statement that
 * exists stays in its place, a new one is put as sbdc_add_value does. */
SBDC_API sbdc_status sbdc_set_references(sbdc_document* document, const char* name,
                                         const char* const* targets, size_t count, sbdc_place place,
                                         const char* sibling);

/* Replaces all attributes of a parameter by `count` keys with their values; NULL in place of a
 * value, or of all of them, stands for none. The format wants a "." in a value. */
SBDC_API sbdc_status sbdc_set_attributes(sbdc_document* document, const char* name,
                                         const char* const* keys, const char* const* values,
                                         size_t count);

/* Removes a parameter or reference statement with the comment behind it. One that is referred to is
 * not removed. */
SBDC_API sbdc_status sbdc_remove_parameter(sbdc_document* document, const char* name);

/* Adds a block in the block `parent` (NULL or "": at the top level, where only "device" may stand).
 * `name` is its own name there. Put something into it before saving: the format has no form for a
 * block without members. */
SBDC_API sbdc_status sbdc_add_block(sbdc_document* document, const char* type, const char* name,
                                    const char* parent, sbdc_place place, const char* sibling);

/* Removes a block with all that is in it, unless something outside refers to it. References to what
 * is inside are not looked for; as long as there are any, the document can't be saved. */
SBDC_API sbdc_status sbdc_remove_block(sbdc_document* document, const char* name);

/* Removes all references to the named object from outside it, and every reference statement that
 * has none left. */
SBDC_API sbdc_status sbdc_remove_references(sbdc_document* document, const char* name);

/* Gives a block or statement another own name. Unless `with_references` is 0, references to it and
 * to what is in it are rewritten. */
SBDC_API sbdc_status sbdc_rename(sbdc_document* document, const char* name, const char* new_name,
                                 int with_references);

/* All edits from sbdc_begin on can be taken back together, or kept. Transactions do not nest:
 * SBDC_MISUSE for a begin inside one, and for the others outside. */
SBDC_API sbdc_status sbdc_begin(sbdc_document* document);
SBDC_API sbdc_status sbdc_commit(sbdc_document* document);
SBDC_API sbdc_status sbdc_roll_back(sbdc_document* document);

/* SBDC_OK if the text, read again, means what the document holds, so that it can be saved;
 * otherwise SBDC_REFUSED, and a finding tells why. */
SBDC_API sbdc_status sbdc_verify(sbdc_document* document);

/* Verifies the text and writes it to the file at `path`, or to the one that was read if that is
 * NULL: there is always either the old file or the new one, whole. A file that was only read from
 * memory needs a path. The second form writes the library's own layout in place of the text. */
SBDC_API sbdc_status sbdc_save(sbdc_document* document, const char* path);
SBDC_API sbdc_status sbdc_save_canonical(sbdc_document* document, const char* path);

/* ---- Devices ------------------------------------------------------------------------------- */

/* A descriptor seen as the setup of one device: every parameter of the stripe is read and judged by
 * the rules of the chip, with defaults filled in. */
typedef struct sbdc_device sbdc_device;

/* A device that is to be found in the device block `device_name`; the caller frees it. */
SBDC_API sbdc_status sbdc_device_new(const char* device_name, sbdc_device** device);
SBDC_API void sbdc_device_free(sbdc_device* device);

/* As sbdc_read and sbdc_read_text. Also SBDC_FAULTY when there is no such device block, or its chip
 * is not known or has no rules, or a parameter is missing or not valid: a finding tells of each,
 * and what could be read of the parameters is there all the same. */
SBDC_API sbdc_status sbdc_device_read(sbdc_device* device, const char* path);
SBDC_API sbdc_status sbdc_device_read_text(sbdc_device* device, const char* text, size_t length,
                                           const char* name);

/* As those of a document, for the last read. */
SBDC_API size_t sbdc_device_finding_count(const sbdc_device* device);
SBDC_API size_t sbdc_device_omitted_finding_count(const sbdc_device* device);
SBDC_API const sbdc_finding* sbdc_device_finding_at(const sbdc_device* device, size_t index);

/* The chip as the file states it, in lower case, such as "qmxa10", and the full name of the
 * stripe's module; "" if there is none. Valid until the next read. */
SBDC_API const char* sbdc_device_chip(const sbdc_device* device);
SBDC_API const char* sbdc_device_module(const sbdc_device* device);

/* What kind of value a parameter has. */
typedef enum sbdc_parameter_type {
  SBDC_TYPE_BOOL = 0,
  SBDC_TYPE_INTEGER = 1, /* 0 to 4294967295. */
  SBDC_TYPE_FLOAT = 2,
  SBDC_TYPE_TEXT = 3 /* In lower case. */
} sbdc_parameter_type;

/* Where the value of a parameter comes from. */
typedef enum sbdc_origin {
  SBDC_NO_ORIGIN = 0,             /* It has none: no statement and no default. */
  SBDC_STATED = 1,                /* A statement of the file. */
  SBDC_PRESENT_BLOCK_DEFAULT = 2, /* The default when its block does not state it. */
  SBDC_ABSENT_BLOCK_DEFAULT = 3   /* The default when its block is not there. */
} sbdc_origin;

/* A parameter of the stripe, as it is and as it may be. */
typedef struct sbdc_parameter {
  const char* name; /* Relative to the stripe's module, in lower case: "sdram.data_width". */
  sbdc_parameter_type type; /* Of its value. */
  sbdc_origin origin;       /* Where its value comes from. */
  int has_value;            /* 0: it has none, and `number` and `text` are 0 and "". */
  int is_required;          /* 1: the file has to state it, as the other settings are. */
  double number;            /* The value, times its unit; 1 or 0 for a Boolean. */
  const char* text;         /* The value of a text. */
  const char* allowed;      /* The values that are allowed, in English: "one of: 8, 16, 32". */
  sbdc_position position;   /* Its statement; line 0 if the file does not state it. */
} sbdc_parameter;

/* Parameter number `index` of those that the chip knows, in the order in which they are judged, or
 * NULL from `sbdc_device_parameter_count` on. Valid until the next read. */
SBDC_API size_t sbdc_device_parameter_count(const sbdc_device* device);
SBDC_API const sbdc_parameter* sbdc_device_parameter(const sbdc_device* device, size_t index);

/* The parameter of that name relative to the module, or NULL when the chip does not know it. */
SBDC_API const sbdc_parameter* sbdc_device_find_parameter(const sbdc_device* device,
                                                          const char* name);

/* The clocks that follow from the settings. */
typedef enum sbdc_clock SBDC_ANY_NUMBER { SBDC_AHB1 = 1, SBDC_AHB2 = 2, SBDC_SDRAM = 3 } sbdc_clock;

/* A frequency that follows from the settings, in hertz if the file gives the input clock with a
 * unit of frequency. SBDC_NOT_FOUND when the settings give none. */
SBDC_API sbdc_status sbdc_device_clock(const sbdc_device* device, sbdc_clock clock,
                                       double* frequency);

/* The data width of DPRAM port 0 or 1 in bits. SBDC_NOT_FOUND for a port that the chip does not
 * have. */
SBDC_API sbdc_status sbdc_device_dpram_width(const sbdc_device* device, int port, uint32_t* width);

#ifdef __cplusplus
}
#endif

#endif
