#include <orbitwalk/RecordReader.h>

/// Ends with 0 where a record of no bytes is refused.
int main() {
    return std::holds_alternative<orbitwalk::RecordReader>(orbitwalk::RecordReader::open({}));
}
