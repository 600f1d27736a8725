// The source that internal errors of the parameter reader name.
#ifndef SBD_PARAMETER_SBD_PARAMETER_SOURCE_H
#define SBD_PARAMETER_SBD_PARAMETER_SOURCE_H

inline constexpr char k_source_parameter_reader[] = "sbd_parameter_reader";

#endif
