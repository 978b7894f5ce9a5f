#pragma once

#include "link/Bus.h"
#include "link/Crc.h"

#include <deque>
#include <optional>
#include <vector>

namespace qv::test {

// A bus whose single device answers each read from a script: a reply, or
// silence (nullopt). Records every transfer written.
class ScriptedBus : public Bus {
public:
    std::vector<QByteArray> written;
    std::deque<std::optional<QByteArray>> replies;
    std::vector<std::int32_t> openedIds;
    std::vector<int> readLengths;
    int count = 1;
    bool openFails = false;
    bool writeFails = false;
    int writesToRefuse = 0; // the next writes refused, one call each

    // A checked reply: payload followed by its CRC, low byte first.
    static QByteArray checked(QByteArray payload) {
        const auto crc = crc16(reinterpret_cast<const std::uint8_t*>(payload.constData()),
                               static_cast<int>(payload.size()));
        payload.append(static_cast<char>(crc & 0xFF));
        payload.append(static_cast<char>(crc >> 8));
        return payload;
    }

    int deviceCount() override { return count; }
    std::int32_t uniqueId(int index) override { return 100 + index; }
    std::unique_ptr<BusHandle> open(std::int32_t id) override {
        openedIds.push_back(id);
        if (openFails)
            return nullptr;
        return std::make_unique<Handle>(*this);
    }

private:
    struct Handle : BusHandle {
        explicit Handle(ScriptedBus& bus) : bus_(bus) {}
        bool write(const QByteArray& transfer) override {
            if (bus_.writeFails || (bus_.writesToRefuse > 0 && bus_.writesToRefuse--))
                return false;
            bus_.written.push_back(transfer);
            return true;
        }
        QByteArray read(int maxLength) override {
            bus_.readLengths.push_back(maxLength);
            if (bus_.replies.empty())
                return {};
            auto reply = bus_.replies.front();
            bus_.replies.pop_front();
            return reply ? reply->left(maxLength) : QByteArray();
        }
        ScriptedBus& bus_;
    };
};

} // namespace qv::test
