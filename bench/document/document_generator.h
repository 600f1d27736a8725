// The document that all readers are measured with.
#ifndef BENCH_DOCUMENT_DOCUMENT_GENERATOR_H
#define BENCH_DOCUMENT_DOCUMENT_GENERATOR_H

#include <cstddef>

#include "bench/document/document_sink.h"

// The size of a usual descriptor: one processor stripe.
constexpr std::size_t TYPICAL_PARAMETERS = 150;

// Tells `sink` a document of exactly so many parameters (2 or more); the same one in every run.
// Larger documents hold many stripes in a tree of buses of at most FAN_OUT members each, so that a
// reader that searches a block member by member does not have to search long.
void generate_document(std::size_t parameter_count, DOCUMENT_SINK& sink);

#endif
