#pragma once

// A small tmpfs of its own for the tests of a full disk. Mounting needs root (CI runs as root);
// elsewhere the tests that need one are skipped with a reason.
#include <filesystem>
#include <string>

#ifdef __linux__
#include <sys/mount.h>
#endif

namespace finora::test {

class SmallDisk {
public:
    SmallDisk(const std::filesystem::path& where, std::size_t bytes) : m_path(where)
    {
        std::filesystem::create_directories(m_path);
#ifdef __linux__
        const std::string options = "size=" + std::to_string(bytes) + ",mode=0777";
        m_mounted = ::mount("tmpfs", m_path.c_str(), "tmpfs", 0, options.c_str()) == 0;
#else
        (void)bytes;
#endif
    }
    ~SmallDisk()
    {
#ifdef __linux__
        if (m_mounted) {
            ::umount2(m_path.c_str(), MNT_DETACH);
        }
#endif
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool mounted() const
    {
        return m_mounted;
    }
    const std::filesystem::path& path() const
    {
        return m_path;
    }

private:
    std::filesystem::path m_path;
    bool m_mounted = false;
};

} // namespace finora::test
