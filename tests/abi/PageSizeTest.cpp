#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr ElfW(Addr) kPage = 16384;

std::vector<ElfW(Phdr)> segmentsOf(const std::string& library) {
    std::ifstream file(library, std::ios::binary);
    ElfW(Ehdr) header{};
    file.read(reinterpret_cast<char*>(&header), sizeof header);
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    file.seekg(static_cast<std::streamoff>(header.e_phoff));
    file.read(reinterpret_cast<char*>(segments.data()),
              static_cast<std::streamsize>(segments.size() * sizeof segments[0]));
    EXPECT_TRUE(file) << library;
    return segments;
}

/// A loader maps whole pages: a segment that shares one with the next would get the next one's
/// permissions. After relocation it protects RELRO up to the end of its last page (Android) or of
/// its last but one (glibc): only an end on a page protects all of it and nothing else.
void expectPagesOf16K(const std::string& library) {
    SCOPED_TRACE(library);
    ElfW(Addr) free = 0;
    int loads = 0, relros = 0;
    for (const ElfW(Phdr) & segment : segmentsOf(library)) {
        const ElfW(Addr) end = segment.p_vaddr + segment.p_memsz;
        if (segment.p_type == PT_LOAD) {
            ++loads;
            EXPECT_EQ(segment.p_align % kPage, 0U);
            EXPECT_EQ(segment.p_vaddr % kPage, segment.p_offset % kPage);
            EXPECT_GE(segment.p_vaddr / kPage, free) << "shares a page with the segment before";
            free = (end + kPage - 1) / kPage;
        } else if (segment.p_type == PT_GNU_RELRO) {
            ++relros;
            EXPECT_EQ(end % kPage, 0U);
        }
    }
    EXPECT_GE(loads, 2);
    EXPECT_EQ(relros, 1);
}

TEST(PageSize, IsSixteenKilobytesInEveryLibraryByBothLinkers) {
    std::istringstream libraries(LIBRARIES ":" LIBRARIES_OF_HOSTS ":" ENGINE_BY_LLD);
    for (std::string library; std::getline(libraries, library, ':');)
        expectPagesOf16K(library);
}

}  // namespace
