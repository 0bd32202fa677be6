// CAN: the opening frame, and what is no frame of a command.

#include "tests/sim/CanVectors.h"

namespace sim {
namespace {

const CanVector openings[] = {
    {"opening_frame_ack_then_nack", {}, R"(
        H: 07F
        C: 17F 79
        H: 07F
        C: 17F 1F
        H: 07F
        C: 17F 1F
    )"},
    {"everything_before_the_opening_frame_is_ignored", {}, R"(
        H: 000 / 07F 7F / 031 08 00 00 00 08
        C: -
        told ignored: frame 000: there was no opening frame
        told ignored: frame 07F: there was no opening frame
        told ignored: frame 031: there was no opening frame
    )" OPEN},
    {"other_frames_are_none_of_the_chips_business", {}, OPEN R"(
        H: 00000002 / r002 / 0000007F / 700 / 200 01
        C: -
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
    )"},
    {"the_chips_own_identifiers_have_one_sender", {}, OPEN R"(
        H: 102 / 1FF 01
        C: -
        told ignored: frame 102: the identifier is the chip's own
        told ignored: frame 1FF: the identifier is the chip's own
    )"},
    {"a_frame_without_data_ends_a_command", {}, OPEN R"(
        H: 031
        C: 131 79
        H: 031 08 00 00 00 08
        C: 131 79
        H: 031 07 01 02 03 04 05 06 07
        C: -
        H: 002
        C: 102 79 / 102 04 03 47 70 05 07 32 / 102 79
        told refused: WRITE: ended by another frame without data
        H: 031 08 00
        C: -
        told ignored: frame 031: its data belong to no open command
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"so_does_the_opening_frame", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 07F
        C: 17F 1F
        told refused: READ: ended by another frame without data
        H: 011 08 00 00 00 08
        C: -
        told ignored: frame 011: its data belong to no open command
    )"},
    {"the_same_opcode_begins_anew", {}, OPEN R"(
        H: 011
        C: 111 79
    )" READS("08 00 00 00 08", "FF FF FF FF 00") "told refused: READ: ended by another frame without data\n"},
    {"data_of_another_command_leave_the_open_one_alone", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 031 08 00 00 00 08 / 07F 7F
        C: -
        told ignored: frame 031: its data belong to no open command
        told ignored: frame 07F: its data belong to no open command
        H: 011 08 00 00 00 08
        C: 111 79
        H: 011 00 FF
        C: 111 79 / 111 FF FF
    )"},
    {"more_than_the_group_needs", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08 00
        C: 111 1F
        told refused: READ: a frame with more than its group needs
        H: 011 08 00 00 00 08
        C: -
        told ignored: frame 011: its data belong to no open command
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"two_groups_in_one_frame_are_one_too_many", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 08 00 FF
        C: 111 1F
        told refused: READ: a frame with more than its group needs
    )"},
    {"more_than_the_group_needs_in_a_later_frame_writes_nothing", {}, OPEN R"(
        H: 031
        C: 131 79
        H: 031 08 00 00 00 08
        C: 131 79
        H: 031 07 01 02 03 04 05 06 07 / 031 08 0F 00
        C: 131 1F
        told refused: WRITE 08000000: a frame with more than its group needs
    )" READS("08 00 00 00 08", "FF FF FF FF 00")},
    {"a_short_frame_inside_a_group", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00
        C: 111 1F
        told refused: READ: a short frame inside a group
        H: 011 08
        C: -
        told ignored: frame 011: its data belong to no open command
    )"},
    {"between_its_frames_a_command_may_take_any_time", {}, OPEN R"(
        H: 031
        C: 131 79
        wait 100000
        H: 031 08 00 00 00 08
        C: 131 79
        wait 100000
        H: 031 07 01 02 03 04 05 06 07
        wait 100000
        H: 031 08 0F
        C: 131 79
    )" READS("08 00 00 00 08", "01 02 03 04 04")},
    {"unknown_opcodes", {}, OPEN R"(
        H: 071 / 0FF / 043
        C: 171 1F / 1FF 1F / 143 1F
        told refused: opcode 71: unknown command
        told refused: opcode FF: unknown command
        told refused: opcode 43: unknown command
    )"},
    {"wrong_check_byte", {}, OPEN R"(
        H: 011
        C: 111 79
        H: 011 08 00 00 00 09
        C: 111 1F
        told refused: READ: wrong checksum
        H: 003
        C: 103 79
        H: 003 03 FD
        C: 103 1F
        told refused: SET_SPEED: wrong checksum
    )"},
    {"frames_while_the_chip_starts_are_lost", {}, OPEN R"(
        button
        wait 19
        H: 07F
        C: -
        wait 1
        H: 002
        C: -
        told ignored: frame 002: there was no opening frame
    )" OPEN},
};
CAN_VECTORS(CanOpening, openings);

} // namespace
} // namespace sim
