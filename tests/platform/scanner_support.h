#pragma once
// SANE with its own test device and no other, in a configuration folder of the test's.
#include "core/temp_folder.h"
#include "platform/desktop/desktop_scanner.h"
#include "platform/scoped_environment.h"

namespace quillane {

inline const QString kScanProgram = QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-scan");

/// Lines that the test device takes as its initial options; see its manual page.
class TestScanners {
public:
    explicit TestScanners(const QByteArray& options = {})
        : mSet("SANE_CONFIG_DIR", mFolder.Bytes().chopped(1))
    {
        mFolder.Write("dll.conf", "test\n");
        Configure(options);
    }
    /// What is not set: grey, 8 bits, 50 dots per inch, 80 by 100 millimetres, a pattern.
    void Configure(const QByteArray& options) const
    {
        mFolder.Write("test.conf",
                      "number_of_devices 2\nmode Gray\ndepth 8\nresolution 50.0\n"
                      "test-picture \"Color pattern\"\ntl_x 0\ntl_y 0\nbr_x 80.0\nbr_y 100.0\n"
                      "geometry_min 0\ngeometry_max 200\ngeometry_quant 1\n"
                      "resolution_min 1\nresolution_max 1200\nresolution_quant 1\n"
                          + options);
    }

private:
    TempFolder mFolder;
    ScopedEnvironment mSet;
};

} // namespace quillane
