// What the disk gives to readers that do nothing else: THREADS threads take
// whole folders from one shared stack, list them, look at every entry and add
// up the sizes. No tree is kept and no order is followed, so no scanner that
// keeps its results can be faster; the scan bench shows it beside the engine.
//
//   tallyroot-plainreader THREADS FOLDER

#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

class PlainReader {
public:
    explicit PlainReader(std::string root) { folders.push_back(std::move(root)); }

    void run(int threads)
    {
        std::vector<std::thread> readers;
        for (int reader = 0; reader < threads; ++reader)
            readers.emplace_back([this] { readLoop(); });
        for (std::thread& reader : readers)
            reader.join();
    }

    std::uint64_t bytes = 0;
    std::uint64_t entries = 0;

private:
    void readLoop()
    {
        std::uint64_t ownBytes = 0;
        std::uint64_t ownEntries = 0;
        std::string folder;
        while (take(folder))
            read(folder, ownBytes, ownEntries);
        std::lock_guard lock(mutex);
        bytes += ownBytes;
        entries += ownEntries;
    }

    // False once no folder is left and no reader can add one.
    bool take(std::string& folder)
    {
        std::unique_lock lock(mutex);
        wake.wait(lock, [this] { return !folders.empty() || busy == 0; });
        if (folders.empty())
            return false;
        folder = std::move(folders.back());
        folders.pop_back();
        ++busy;
        return true;
    }

    void read(const std::string& folder, std::uint64_t& ownBytes, std::uint64_t& ownEntries)
    {
        std::vector<std::string> found;
        if (DIR* dir = opendir(folder.c_str())) {
            while (const dirent* entry = readdir(dir)) {
                if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
                    continue;
                ++ownEntries;
                struct stat info {};
                if (fstatat(dirfd(dir), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                if (S_ISDIR(info.st_mode))
                    found.push_back(folder + '/' + entry->d_name);
                else
                    ownBytes += std::uint64_t(info.st_size);
            }
            closedir(dir);
        }
        std::lock_guard lock(mutex);
        for (std::string& subfolder : found)
            folders.push_back(std::move(subfolder));
        --busy;
        wake.notify_all();
    }

    std::mutex mutex;
    std::condition_variable wake;
    std::vector<std::string> folders;
    int busy = 0;
};

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3 || std::atoi(argv[1]) < 1) {
        std::fprintf(stderr, "usage: %s THREADS FOLDER\n", argv[0]);
        return 2;
    }
    PlainReader reader(argv[2]);
    reader.run(std::atoi(argv[1]));
    std::printf("%llu entries, %llu bytes\n", static_cast<unsigned long long>(reader.entries),
                static_cast<unsigned long long>(reader.bytes));
    return 0;
}
