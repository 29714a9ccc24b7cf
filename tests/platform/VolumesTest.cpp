// The same checks against each backend's list of local disks: this machine's
// disks, and under Wine its fixed drives C: and Z:.

#include "Volumes.h"
#include "MiniTest.h"

TEST_CASE(everyDiskHasItsFigures)
{
    const auto volumes = platform::fixedVolumes();
    CHECK(!volumes.empty());
    for (const auto& volume : volumes) {
        CHECK(!volume.drive.empty());
        CHECK(!volume.rootPath.empty());
        CHECK(!volume.fileSystem.empty());
        CHECK(volume.totalBytes > 0);
        CHECK(volume.freeToCaller <= volume.totalBytes);
        CHECK(volume.maxComponentLength > 0);
        CHECK(volume.bytesPerSector > 0);
        CHECK(volume.freeClusters <= volume.totalClusters);
    }
}

TEST_CASE(disksComeInOrder)
{
    const auto volumes = platform::fixedVolumes();
    for (std::size_t i = 1; i < volumes.size(); ++i)
        CHECK(volumes[i - 1].drive < volumes[i].drive);
}

int main()
{
    return minitest::runAll("VolumesTest");
}
