#ifndef POS_TESTS_TENFIBRES_H
#define POS_TESTS_TENFIBRES_H

#include <string>

/** A bundle of ten fibres of every kind, in a document order of its own. */
inline std::string tenFibres() {
    return "<fibre id='304' pos_x='0' pos_y='0' fibre_name='C14' status='enabled'/>"
           "<fibre id='101' pos_x='-1' pos_y='0' fibre_name='1A' status='enabled'/>"
           "<fibre id='102' pos_x='0' pos_y='3' fibre_name='S01' status='enabled'/>"
           "<fibre id='103' pos_x='1' pos_y='0' fibre_name='2B' status='disabled'/>"
           "<fibre id='104' pos_x='-3' pos_y='0' fibre_name='S02' status='broken'/>"
           "<fibre id='105' pos_x='0' pos_y='-3' fibre_name='sky'/>"
           "<fibre id='200' pos_x='0' pos_y='0.5' fibre_name='C13' status='no such word'/>"
           "<fibre id='305' pos_x='0' pos_y='-0.5' fibre_name='3C' status='absent'/>"
           "<fibre id='400' pos_x='0.5' pos_y='0.5' fibre_name='2S' status='no prism'/>"
           "<fibre id='500' pos_x='2' pos_y='-1' fibre_name='12A' status='enabled'/>";
}

#endif
