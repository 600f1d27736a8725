// The sources that internal errors of the device layer name.
#ifndef SBD_DEVICE_SBD_DEVICE_SOURCES_H
#define SBD_DEVICE_SBD_DEVICE_SOURCES_H

inline constexpr char k_source_veldran[] = "sbd_veldran";
inline constexpr char k_source_veldran_parameter_reader[] = "sbd_veldran_parameter_reader";

#endif
