#pragma once

#include "monitor/codec/SlotCodec.h"
#include "trovio/Time.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Monitor {

/// Makes poses of the records of slots, as a 3D view takes them: each matrix that only turns and moves, called by its
/// label, and what has both a position and a rotation, "Tracker/head/position" with "Tracker/head/rotation", called
/// "Tracker/head". All of them stand in one frame, "world".
/// Threads: one at a time.
class Poses {
public:
    /// Of slots with their codecs by label, those whose records make poses.
    static std::vector<std::string> labelsAmong(const std::map<std::string, const SlotCodec*>& slots);

    /// A record of such a slot. Empty, or why it makes no pose. Those of other slots are passed over.
    std::string note(const std::string& label, const SlotCodec& codec, std::span<const std::byte> message,
                     const Trovio::Time& stamp);
    /// The slot is gone, and what it made is no news for anybody.
    void forget(const std::string& label);

    /// The poses since the last call as tf2_msgs/msg/TFMessage; false, and no message, if there were none. A position
    /// and a rotation that come at the same time make one pose.
    bool take(Bytes& message);
    /// The newest pose of everything, for who looks from now on; false, and no message, if there is none.
    bool takeNewest(Bytes& message) const;

private:
    struct Pose {
        std::array<double, 3> _position{};
        std::array<double, 4> _rotation{}; // quaternion x, y, z, w, of length 1
        Trovio::Time _stamp;
    };
    /// What is known of a thing with a position and a rotation, and what of it no pose has said yet.
    struct Parts {
        std::optional<std::array<double, 3>> _position;
        std::optional<std::array<double, 4>> _rotation;
        bool _isPositionNew = false, _isRotationNew = false;
        Trovio::Time _stamp;
    };
    using Made = std::vector<std::pair<std::string, Pose>>; // by frame

    std::string noteMatrix(const std::string& label, const std::array<double, 16>& matrix, const Trovio::Time& stamp);
    std::string notePart(const std::string& label, std::span<const std::byte> message, const Trovio::Time& stamp,
                         bool isPosition, bool isFloat);
    void finish(const std::string& frame, Parts& parts);
    void make(const std::string& frame, const Pose& pose);
    template <class List>
    static bool write(const List& poses, Bytes& message);

    std::map<std::string, Parts> _parts; // by frame
    Made _made;                          // since the last take()
    std::map<std::string, Pose> _newest; // by frame
};

} // namespace Monitor
