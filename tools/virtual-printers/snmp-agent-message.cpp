// Parses SNMPv1 requests and builds responses in BER (X.690), without a library: the printers it serves
// have to answer exactly what the tests say, to the byte.
// Constants: tags INTEGER 02, OCTET STRING 04, OBJECT IDENTIFIER 06, SEQUENCE 30, GetResponse A2;
// error-status noError 0, tooBig 1, noSuchName 2.
// Limits: lengths of at most four bytes are read; INTEGERs of 0 to 2^31-1 are written.
#include "snmp-agent-message.h"

#include <algorithm>
#include <array>
#include <utility>

namespace snmp {
namespace {

constexpr std::uint8_t integerTag = 0x02;
constexpr std::uint8_t octetStringTag = 0x04;
constexpr std::uint8_t objectIdTag = 0x06;
constexpr std::uint8_t sequenceTag = 0x30;
constexpr std::uint8_t getResponseTag = 0xA2;

constexpr std::uint8_t multiByteTag = 0x1F;
constexpr std::uint8_t longLength = 0x80;
constexpr std::size_t maxLengthBytes = 4;

constexpr std::string_view expectedCommunity = "public";

// 1.3.6.1.2.1.43
constexpr std::array<std::uint8_t, 6> printerMib{0x2B, 0x06, 0x01, 0x02, 0x01, 0x2B};
// 1.3.6.1.2.1.43.5.1.1.1.1
constexpr std::array<std::uint8_t, 11> firstPrinterObject{0x2B, 0x06, 0x01, 0x02, 0x01, 0x2B,
                                                          0x05, 0x01, 0x01, 0x01, 0x01};
// 1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1
constexpr std::array<std::uint8_t, 15> deviceIdObject{0x2B, 0x06, 0x01, 0x04, 0x01, 0x95, 0x0B, 0x01,
                                                      0x02, 0x01, 0x02, 0x01, 0x01, 0x03, 0x01};

enum class ErrorStatus : std::uint8_t { NoError = 0, TooBig = 1, NoSuchName = 2 };

struct Element {
    std::uint8_t tag = 0;
    ByteView content;
    ByteView whole;
};

// Hands out the elements of a constructed value one after the other.
class Reader {
  public:
    explicit Reader(ByteView bytes) : rest_(bytes) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

    std::optional<Element> next() {
        if (rest_.size() < 2 || (rest_[0] & multiByteTag) == multiByteTag) {
            return std::nullopt;
        }
        std::size_t header = 2;
        std::size_t length = rest_[1];
        if (length >= longLength) {
            const std::size_t lengthBytes = length - longLength;
            // None at all is the indefinite form, which SNMP does not use.
            if (lengthBytes == 0 || lengthBytes > maxLengthBytes || rest_.size() < header + lengthBytes) {
                return std::nullopt;
            }
            length = 0;
            for (const std::uint8_t byte : rest_.subspan(header, lengthBytes)) {
                length = (length << 8U) | byte;
            }
            header += lengthBytes;
        }
        if (rest_.size() - header < length) {
            return std::nullopt;
        }
        const Element element{rest_[0], rest_.subspan(header, length), rest_.first(header + length)};
        rest_ = rest_.subspan(header + length);
        return element;
    }

    std::optional<Element> next(std::uint8_t tag) {
        const auto element = next();
        return element && element->tag == tag ? element : std::nullopt;
    }

    std::optional<Element> nextInteger() {
        const auto element = next(integerTag);
        return element && !element->content.empty() ? element : std::nullopt;
    }

  private:
    ByteView rest_;
};

bool isZero(ByteView integer) {
    return std::ranges::all_of(integer, [](std::uint8_t byte) { return byte == 0; });
}

std::optional<PduType> requestType(std::uint8_t tag) {
    switch (const auto type = static_cast<PduType>(tag)) {
        case PduType::GetRequest:
        case PduType::GetNextRequest:
        case PduType::SetRequest:
            return type;
    }
    return std::nullopt;
}

std::optional<std::vector<ByteView>> parseVarbinds(ByteView list) {
    std::vector<ByteView> objectIds;
    for (Reader reader(list); !reader.atEnd();) {
        const auto varbind = reader.next(sequenceTag);
        if (!varbind) {
            return std::nullopt;
        }
        Reader fields(varbind->content);
        const auto objectId = fields.next(objectIdTag);
        if (!objectId || objectId->content.empty() || !fields.next() || !fields.atEnd()) {
            return std::nullopt;
        }
        objectIds.push_back(objectId->content);
    }
    if (objectIds.empty()) {
        return std::nullopt;
    }
    return objectIds;
}

std::optional<Request> parsePdu(const Element& pdu) {
    const auto type = requestType(pdu.tag);
    Reader fields(pdu.content);
    const auto requestId = fields.nextInteger();
    const auto errorStatus = fields.nextInteger();
    const auto errorIndex = fields.nextInteger();
    const auto varbinds = fields.next(sequenceTag);
    if (!type || !requestId || !errorStatus || !errorIndex || !varbinds || !fields.atEnd()) {
        return std::nullopt;
    }
    auto objectIds = parseVarbinds(varbinds->content);
    if (!objectIds) {
        return std::nullopt;
    }
    return Request{*type, requestId->whole, varbinds->content, std::move(*objectIds)};
}

void append(Bytes& out, ByteView bytes) {
    out.insert(out.end(), bytes.begin(), bytes.end());
}

void appendElement(Bytes& out, std::uint8_t tag, ByteView content) {
    out.push_back(tag);
    if (content.size() < longLength) {
        out.push_back(static_cast<std::uint8_t>(content.size()));
    } else {
        Bytes length;
        for (std::size_t left = content.size(); left != 0; left >>= 8U) {
            length.insert(length.begin(), static_cast<std::uint8_t>(left & 0xFFU));
        }
        out.push_back(static_cast<std::uint8_t>(longLength | length.size()));
        append(out, length);
    }
    append(out, content);
}

void appendInteger(Bytes& out, std::uint32_t value) {
    Bytes content{static_cast<std::uint8_t>(value & 0xFFU)};
    // A first byte of 80 or more would make the number negative.
    while ((value >>= 8U) != 0 || content.front() >= 0x80) {
        content.insert(content.begin(), static_cast<std::uint8_t>(value & 0xFFU));
    }
    appendElement(out, integerTag, content);
}

void appendVarbind(Bytes& out, ByteView objectId, ByteView value) {
    Bytes varbind;
    appendElement(varbind, objectIdTag, objectId);
    append(varbind, value);
    appendElement(out, sequenceTag, varbind);
}

ByteView viewOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Bytes encodeResponse(const Request& request, ErrorStatus status, std::size_t errorIndex, ByteView varbinds) {
    Bytes pdu(request.requestId.begin(), request.requestId.end());
    appendInteger(pdu, static_cast<std::uint8_t>(status));
    appendInteger(pdu, static_cast<std::uint32_t>(errorIndex));
    appendElement(pdu, sequenceTag, varbinds);

    Bytes message;
    appendInteger(message, 0);
    appendElement(message, octetStringTag, viewOf(expectedCommunity));
    appendElement(message, getResponseTag, pdu);

    Bytes datagram;
    appendElement(datagram, sequenceTag, message);
    return datagram;
}

}  // namespace

std::optional<Request> parseRequest(ByteView datagram) {
    Reader outer(datagram);
    const auto message = outer.next(sequenceTag);
    // Bytes after the message are refused although some responders let them pass: a client that sends them
    // has a fault worth showing.
    if (!message || !outer.atEnd()) {
        return std::nullopt;
    }
    Reader fields(message->content);
    const auto version = fields.nextInteger();
    const auto community = fields.next(octetStringTag);
    const auto pdu = fields.next();
    if (!version || !isZero(version->content) || !community || !pdu || !fields.atEnd()) {
        return std::nullopt;
    }
    if (!std::ranges::equal(community->content, viewOf(expectedCommunity))) {
        return std::nullopt;
    }
    return parsePdu(*pdu);
}

bool asksForDeviceId(const Request& request) {
    return request.type == PduType::GetRequest &&
           std::ranges::equal(request.objectIds.front(), deviceIdObject);
}

Bytes buildResponse(const Request& request, std::string_view deviceId) {
    Bytes one;
    appendInteger(one, 1);
    Bytes deviceIdString;
    appendElement(deviceIdString, octetStringTag, viewOf(deviceId));

    Bytes varbinds;
    for (std::size_t i = 0; i < request.objectIds.size(); ++i) {
        const ByteView objectId = request.objectIds[i];
        if (request.type == PduType::GetNextRequest && std::ranges::equal(objectId, printerMib)) {
            appendVarbind(varbinds, firstPrinterObject, one);
        } else if (request.type == PduType::GetRequest && std::ranges::equal(objectId, deviceIdObject)) {
            appendVarbind(varbinds, deviceIdObject, deviceIdString);
        } else {
            return encodeResponse(request, ErrorStatus::NoSuchName, i + 1, request.varbinds);
        }
    }
    Bytes response = encodeResponse(request, ErrorStatus::NoError, 0, varbinds);
    if (response.size() > maxDatagram) {
        return encodeResponse(request, ErrorStatus::TooBig, 0, request.varbinds);
    }
    return response;
}

}  // namespace snmp
