// Room for plain records that are made later, one by one: nothing is put into it before.
#ifndef SBD_READING_SBD_ROOM_H
#define SBD_READING_SBD_ROOM_H

#include <cstddef>

template <class T, std::size_t COUNT>
union SBD_ROOM {
  SBD_ROOM() {}
  T items[COUNT];
};

#endif
