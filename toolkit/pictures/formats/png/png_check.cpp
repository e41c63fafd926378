// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_check.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/files/opened_files.h"
#include "toolkit/pictures/formats/deflate/adler.h"
#include "toolkit/pictures/formats/deflate/inflater.h"
#include "toolkit/pictures/formats/png/png_frame.h"
#include "toolkit/pictures/formats/png/png_rows.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

/// An open file, read at any place by any thread.
class CheckedFile {
public:
    explicit CheckedFile(std::filesystem::path const& file) : descriptor_(open_file(file, OpenFor::kReading))
    {
        struct stat status = {};
        if (status_of(descriptor_, status)) {
            size_ = static_cast<std::size_t>(status.st_size);
        }
    }
    ~CheckedFile() { close(descriptor_); }
    CheckedFile(CheckedFile const&) = delete;
    CheckedFile& operator=(CheckedFile const&) = delete;

    std::size_t size() const { return size_; }

    /// Fills @p to. False if the file ends before.
    bool read(std::size_t at, std::span<std::uint8_t> to) const
    {
        while (!to.empty()) {
            ssize_t const got = pread(descriptor_, to.data(), to.size(), static_cast<off_t>(at));
            if (got == 0 || (got < 0 && errno != EINTR)) {
                return false;
            }
            std::size_t const step = got > 0 ? static_cast<std::size_t>(got) : 0;
            at += step;
            to = to.subspan(step);
        }
        return true;
    }

private:
    int descriptor_;
    std::size_t size_ = 0;
};

/// The chunk of a piece of the rows.
struct PieceChunk {
    std::size_t at;
    std::size_t size; ///< Of its content.
};

/// Looks at pieces. Of one thread.
class PieceCheck {
public:
    PieceCheck(CheckedFile const& file, PngRows const& rows) : file_(file), rows_(rows) {}

    struct Found {
        bool is_right = false;
        std::uint32_t adler = 1;
        std::size_t length = 0;
    };

    Found look(std::size_t piece, PieceChunk const& chunk)
    {
        std::size_t const head = png_piece_head(0).size();
        packed_.resize(chunk.size);
        std::array<std::uint8_t, 4> tail{};
        if (!file_.read(chunk.at + head, packed_) || !file_.read(chunk.at + head + chunk.size, tail) ||
            tail != png_piece_tail(packed_)) {
            return {};
        }
        packed_.insert(packed_.end(), {0b011, 0}); // a last block, which is empty
        unpacked_.resize(rows_.filtered_size(piece));
        if (!inflater_.inflate(packed_, unpacked_) || !rows_.filter_like(piece, unpacked_, wanted_)) {
            return {};
        }
        return {unpacked_ == wanted_, libdeflate_adler32(1, unpacked_.data(), unpacked_.size()),
                unpacked_.size()};
    }

private:
    CheckedFile const& file_;
    PngRows const& rows_;
    Inflater inflater_;
    std::vector<std::uint8_t> packed_;
    std::vector<std::uint8_t> unpacked_;
    std::vector<std::uint8_t> wanted_;
};

/// One file.
class PngCheck {
public:
    PngCheck(std::filesystem::path const& file, Picture const& picture)
        : file_(file), picture_(picture), rows_(picture)
    {
    }

    bool run()
    {
        return pass(png_start(picture_)) && find_pieces() && pieces_are_right() && pass(png_end(adler_)) &&
               at_ == file_.size();
    }

private:
    /// Goes on behind @p bytes if they are next in the file.
    bool pass(std::vector<std::uint8_t> const& bytes)
    {
        std::vector<std::uint8_t> found(bytes.size());
        bool const same = file_.read(at_, found) && found == bytes;
        at_ += bytes.size();
        return same;
    }

    bool find_pieces()
    {
        constexpr std::size_t kLengthBytes = 4;
        constexpr std::size_t kTail = 4;
        pieces_.resize(rows_.pieces());
        for (PieceChunk& piece : pieces_) {
            std::array<std::uint8_t, 8> head{};
            if (!file_.read(at_, head)) {
                return false;
            }
            piece = {at_, 0};
            for (std::size_t i = 0; i < kLengthBytes; ++i) {
                piece.size = piece.size << 8U | head[i];
            }
            at_ += head.size() + piece.size + kTail;
            if (head != png_piece_head(piece.size) || at_ > file_.size()) {
                return false;
            }
        }
        return true;
    }

    bool pieces_are_right()
    {
        std::vector<PieceCheck::Found> found(pieces_.size());
        on_all_threads(pieces_.size(), [&](auto next) {
            PieceCheck check(file_, rows_);
            for (std::size_t i = next(); i < pieces_.size(); i = next()) {
                found[i] = check.look(i, pieces_[i]);
            }
        });
        for (PieceCheck::Found const& each : found) {
            adler_ = joined_adler(adler_, each.adler, each.length);
        }
        return std::ranges::all_of(found, &PieceCheck::Found::is_right);
    }

    CheckedFile file_;
    Picture const& picture_;
    PngRows rows_;
    std::size_t at_ = 0;
    std::vector<PieceChunk> pieces_;
    std::uint32_t adler_ = 1;
};

} // namespace

bool png_holds(std::filesystem::path const& file, Picture const& picture)
{
    return PngCheck(file, picture).run();
}

} // namespace umbrixlib::toolkit
