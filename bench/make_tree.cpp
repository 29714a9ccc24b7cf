// Makes the benchmark tree: a fixed number of folders and files, the same tree
// on every run (a seeded generator), with sparse files so that a large tree
// takes almost no disk space.
//
//   tallyroot-maketree ROOT [FILES FOLDERS MAXDEPTH]
//   tallyroot-maketree --chain ROOT DEPTH
//
// The second form makes a chain of DEPTH folders named "d", one inside the
// other, with a one-byte file "f" every 100 levels: deeper than any path the
// system takes whole, so it is made one level at a time.

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// splitmix64: small, fast and the same everywhere.
struct Random {
    std::uint64_t state;
    std::uint64_t next()
    {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    std::uint64_t below(std::uint64_t bound) { return next() % bound; }
};

const char* const extensions[] = {
    ".txt",    ".pdf", ".docx", ".xlsx", ".jpg",  ".JPG", ".png",    ".gif",   ".mp3",
    ".flac",   ".ogg", ".wav",  ".mp4",  ".mkv",  ".avi", ".mov",    ".zip",   ".7z",
    ".tar.gz", ".gz",  ".iso",  ".dmg",  ".exe",  ".msi", ".dll",    ".so",    ".o",
    ".h",      ".cpp", ".py",   ".js",   ".html", ".css", ".svg",    ".psd",   ".ttf",
    ".bak",    ".tmp", ".log",  ".json", ".a.b",  "",     ".Tar.GZ", ".blend", ".md"};

std::uint64_t fileSize(Random& random)
{
    const std::uint64_t kind = random.below(100);
    if (kind < 70)
        return random.below(64 * 1024);
    if (kind < 95)
        return 64 * 1024 + random.below(16 * 1024 * 1024);
    return 16 * 1024 * 1024 + random.below(std::uint64_t{4} << 30);
}

struct Folder {
    std::string path;
    int depth;
};

int makeChain(const char* root, long depth)
{
    if (mkdir(root, 0755) != 0) {
        std::perror(root);
        return 1;
    }
    int folder = open(root, O_RDONLY | O_DIRECTORY);
    for (long level = 0; level < depth && folder >= 0; ++level) {
        if (level % 100 == 0) {
            const int fd = openat(folder, "f", O_WRONLY | O_CREAT | O_TRUNC, 0644);
            if (fd < 0 || write(fd, "x", 1) != 1)
                return std::perror("f"), 1;
            close(fd);
        }
        const int below =
            mkdirat(folder, "d", 0755) == 0 ? openat(folder, "d", O_RDONLY | O_DIRECTORY) : -1;
        close(folder);
        folder = below;
    }
    if (folder < 0)
        return std::perror("d"), 1;
    close(folder);
    std::printf("a chain of %ld folders in %s\n", depth, root);
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc == 4 && std::string(argv[1]) == "--chain")
        return makeChain(argv[2], std::atol(argv[3]));
    if (argc != 2 && argc != 5) {
        std::fprintf(stderr, "usage: %s ROOT [FILES FOLDERS MAXDEPTH] | --chain ROOT DEPTH\n",
                     argv[0]);
        return 2;
    }
    const std::string root = argv[1];
    const long files = argc == 5 ? std::atol(argv[2]) : 1000000;
    const long folderCount = argc == 5 ? std::atol(argv[3]) : 100000;
    const int maxDepth = argc == 5 ? std::atoi(argv[4]) : 12;
    Random random{20261122};

    if (mkdir(root.c_str(), 0755) != 0 && errno != EEXIST) {
        std::perror(root.c_str());
        return 1;
    }
    std::vector<Folder> folders{{root, 0}};
    while (static_cast<long>(folders.size()) < folderCount) {
        const Folder& parent = folders[random.below(folders.size())];
        if (parent.depth >= maxDepth)
            continue;
        Folder folder{parent.path + "/d" + std::to_string(folders.size()), parent.depth + 1};
        if (mkdir(folder.path.c_str(), 0755) != 0 && errno != EEXIST) {
            std::perror(folder.path.c_str());
            return 1;
        }
        folders.push_back(std::move(folder));
    }

    std::vector<std::vector<long>> filesOf(folders.size());
    for (long file = 0; file < files; ++file)
        filesOf[random.below(folders.size())].push_back(file);
    for (std::size_t index = 0; index < folders.size(); ++index) {
        const int dir = open(folders[index].path.c_str(), O_RDONLY | O_DIRECTORY);
        if (dir < 0) {
            std::perror(folders[index].path.c_str());
            return 1;
        }
        for (long file : filesOf[index]) {
            const auto& extension = extensions[random.below(std::size(extensions))];
            const std::string name = "f" + std::to_string(file) + extension;
            const int fd = openat(dir, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            if (fd < 0 || ftruncate(fd, static_cast<off_t>(fileSize(random))) != 0) {
                std::perror(name.c_str());
                return 1;
            }
            close(fd);
        }
        close(dir);
    }
    std::printf("%zu folders, %ld files, depth up to %d in %s\n", folders.size(), files, maxDepth,
                root.c_str());
    return 0;
}
