# {fmt} from its headers alone, for machines without a package of it.
if(NOT TARGET fmt::fmt)
  add_library(fmt::fmt INTERFACE IMPORTED GLOBAL)
  target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY=1)
endif()
