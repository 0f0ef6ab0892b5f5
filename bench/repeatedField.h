#ifndef POS_BENCH_REPEATEDFIELD_H
#define POS_BENCH_REPEATEDFIELD_H

#include <string>

/** A field definition with the one field of examples/sombrero_south.xml as many times as wanted. */
std::string repeatedField(int fields);

#endif
