#include "ownConfiguration.h"

std::string OwnConfiguration::write(const TemporaryFolder& folder) const {
    const std::string version = " datamver=\"" + datamver + "\"";
    folder.write("conf/data/map.xml", "<focal_plane_map" + version + " " + mapAttributes + "><optical_axis><PLATE_A " +
                                          plateA + "/><PLATE_B " + plateB + "/><VEKO " + veko +
                                          "/></optical_axis><distortion_coefficients " + distortion +
                                          "/></focal_plane_map>");
    folder.write("conf/data/bundle.xml",
                 "<plate_definition" + version + " " + bundle + ">" + fibres + "</plate_definition>");
    return folder.write("conf/own.xml", "<configure" + version + ">" + configureVersion + defaultEpoch + R"(
<telescope><east_longitude>-17.881639</east_longitude><latitude>28.760583</latitude><height>2332.0</height>
<horizon_limit>5.0</horizon_limit><focal_plane_map>)" +
                                            mapName + R"(</focal_plane_map>
<rotator_low_limit>-135.0</rotator_low_limit><rotator_high_limit>135.0</rotator_high_limit>
<optimum_rotator_angle><plate_a>-25.0</plate_a><plate_b>25.0</plate_b></optimum_rotator_angle>
<rotator_offset>0.0</rotator_offset></telescope>)" +
                                            vekoDefinition + "</configure>");
}
