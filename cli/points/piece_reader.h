// Files of points, cut into pieces of whole lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "points/ordered_work.h"
#include "points/point_line.h"
#include "points/point_writer.h"
#include "system/files.h"
#include "system/text_buffer.h"

namespace cli {

inline constexpr std::size_t longestLine = std::size_t{1} << 17;  // bytes

struct FileForm {
    LineForm lines;
    bool delimiterKnown = false;  // else each file's first point tells it
    bool header = false;          // the first line of a file names its columns
    bool label = false;           // a comment that names the columns is wanted ahead of everything
};

// Some lines of a file on their way through the program.
struct Piece {
    std::string fileName;
    std::string before;  // written as it is, ahead of the lines
    TextBuffer lines;
    std::uint64_t firstLine = 1;
    bool overlong = false;  // a single line, which was skipped: there are none
    std::size_t read = 0;   // bytes of the file
    LineForm form;
    Written written;
};

// Cuts files into pieces, which it submits, and finds out how their lines are made.
class PieceReader {
  public:
    // blockSize: bytes of a piece whose lines are not longer.
    PieceReader(const FileForm& fileForm, const PointWriter& pointWriter, std::size_t blockSize,
                OrderedWork<Piece>& pieces);

    // Reads a file to its end.
    void read(InputFile& input);

  private:
    struct File;

    void take_lines(File& file, Piece& piece) const;
    void take_head(File& file, Piece& piece);

    FileForm form;
    const PointWriter& writer;
    std::size_t block;
    OrderedWork<Piece>& work;
    bool begun = false;  // whether the first file's head was written
};

}  // namespace cli
