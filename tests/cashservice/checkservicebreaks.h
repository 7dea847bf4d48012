// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "checkbrokenservice.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

/// The ways in which a cash service is broken on purpose.
namespace ServiceBreaks {
using Post = BrokenService::Post;
using Reply = BrokenService::Reply;
using Forward = BrokenService::Forward;
using Behaviour = BrokenService::Behaviour;

// Documents are edited as texts: some of them are no XML.

inline bool has(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

inline int count(const std::string &text, const std::string &part)
{
    int found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++found;
    return found;
}

inline std::string replaced(std::string text, const std::string &part, const std::string &by)
{
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
    return text;
}

/// What stands between an element's tags, as it stands there; empty without the element.
inline std::string element(const std::string &text, const std::string &name)
{
    const std::size_t start = text.find("<" + name + ">");
    const std::size_t end = text.find("</" + name + ">");
    if (start == std::string::npos || end == std::string::npos)
        return {};
    const std::size_t content = start + name.size() + 2;
    return text.substr(content, end - content);
}

inline std::string withElement(const std::string &text, const std::string &name, const std::string &content)
{
    const std::string start = "<" + name + ">";
    const std::string end = "</" + name + ">";
    return replaced(text, start + element(text, name) + end, start + content + end);
}

inline std::string withoutElement(const std::string &text, const std::string &name)
{
    return replaced(text, "<" + name + ">" + element(text, name) + "</" + name + ">", {});
}

inline bool isBefore(const std::string &text, const std::string &first, const std::string &second)
{
    return has(text, first) && has(text, second) && text.find(first) < text.find(second);
}

inline bool isPayment(const Post &post)
{
    return post.operation == "ParkInfoPay";
}

inline bool isSuccess(const Reply &reply)
{
    return has(reply.body, "ResultCode=\"1\"");
}

inline Reply answer(const Post &post, const std::string &code, const std::string &fields)
{
    return {200, "application/soap+xml",
            "<?xml version=\"1.0\"?>\n<Response Operation=\"" + post.operation + "Response\" ResultCode=\"" + code +
                "\">" + fields + "</Response>\n"};
}

inline Reply refusal(const Post &post)
{
    return answer(post, "0", "<ErrorInfo>no</ErrorInfo>");
}

/// A success without a reason: nothing is registered.
inline Reply success(const Post &post)
{
    const std::string time = "2024-03-07T14:05:09";
    return answer(post, "1",
                  "<PartnerId>" + element(post.body, "PartnerId") + "</PartnerId><SessionId>" +
                      element(post.body, "SessionId") + "</SessionId><StartTime>" + time +
                      "</StartTime><TotalCharge>5000</TotalCharge><AmountSum>0</AmountSum><AnswerTime>" + time +
                      "</AnswerTime>");
}

/// The same payment under a number that no other has.
inline Post asAnother(Post post)
{
    static std::atomic<int> counter{0};
    post.body = withElement(post.body, "Uin", std::to_string(++counter));
    return post;
}

// Kinds of behaviour.

/// Changes what the real service answers.
inline Behaviour changesAnswer(const std::function<void(Reply &)> &change)
{
    return [change](const Post &post, const Forward &forward) {
        Reply reply = forward(post);
        change(reply);
        return reply;
    };
}

inline Behaviour changesSuccess(const std::function<std::string(const std::string &body)> &change)
{
    return changesAnswer([change](Reply &reply) {
        if (isSuccess(reply))
            reply.body = change(reply.body);
    });
}

inline Behaviour changesRefusal(const std::function<std::string(const std::string &body)> &change)
{
    return changesAnswer([change](Reply &reply) {
        if (!isSuccess(reply))
            reply.body = change(reply.body);
    });
}

using Judgement = std::function<bool(const Post &)>;

inline Behaviour takes(const Judgement &isTaken)
{
    return
        [isTaken](const Post &post, const Forward &forward) { return isTaken(post) ? success(post) : forward(post); };
}

inline Behaviour refuses(const Judgement &isRefused)
{
    return [isRefused](const Post &post, const Forward &forward) {
        return isRefused(post) ? refusal(post) : forward(post);
    };
}

/// Lets one request in at a time; the state may be captured in the behaviour then.
inline Behaviour oneByOne(const Behaviour &behaviour)
{
    const auto mutex = std::make_shared<std::mutex>();
    return [=](const Post &post, const Forward &forward) {
        const std::lock_guard<std::mutex> lock(*mutex);
        return behaviour(post, forward);
    };
}

/// What was paid, by the parts of the key that count.
class Payments
{
public:
    explicit Payments(std::vector<std::string> key) : m_key(std::move(key)) {}

    /// The first document that came with that key: this one, if none came before or the key is not whole.
    std::string first(const Post &post)
    {
        std::string key;
        for (const std::string &name : m_key) {
            const std::string part = element(post.body, name);
            if (part.empty())
                return post.body;
            key += part + "\n";
        }
        return m_first.emplace(key, post.body).first->second;
    }

private:
    std::vector<std::string> m_key;
    std::map<std::string, std::string> m_first;
};

/// Does @a behaviour with a payment that has the key of an earlier one and differs from it in the element @a other.
inline Behaviour onRepetition(const std::vector<std::string> &key, const std::string &other, const Behaviour &behaviour)
{
    return oneByOne([=, payments = std::make_shared<Payments>(key)](const Post &post, const Forward &forward) {
        if (!isPayment(post))
            return forward(post);
        const std::string first = payments->first(post);
        const std::string part = element(post.body, other);
        return !part.empty() && part != element(first, other) ? behaviour(post, forward) : forward(post);
    });
}

/// Does @a behaviour with a payment whose very document came before.
inline Behaviour onSameDocument(const Behaviour &behaviour)
{
    return oneByOne([=, seen = std::make_shared<std::set<std::string>>()](const Post &post, const Forward &forward) {
        return !isPayment(post) || seen->insert(post.body).second ? forward(post) : behaviour(post, forward);
    });
}

/// Puts into each success the text that the first one had there.
inline Behaviour remembers(const std::string &name)
{
    const auto first = std::make_shared<std::string>();
    return oneByOne([=](const Post &post, const Forward &forward) {
        Reply reply = forward(post);
        if (first->empty())
            *first = element(reply.body, name);
        if (isSuccess(reply))
            reply.body = withElement(reply.body, name, *first);
        return reply;
    });
}

// The less simple ones.

inline std::string withDecimals(const std::string &body)
{
    std::string amount = element(body, "TotalCharge");
    return amount.size() < 3 ? body : withElement(body, "TotalCharge", amount.insert(amount.size() - 2, "."));
}

inline std::string withGermanDate(const std::string &body)
{
    const std::string time = element(body, "StartTime");
    if (time.empty())
        return body;
    return withElement(body, "StartTime",
                       time.substr(8, 2) + "." + time.substr(5, 2) + "." + time.substr(0, 4) + " " + time.substr(11));
}

inline std::string withQuestionMarks(const std::string &body)
{
    std::string id = element(body, "SessionId");
    std::replace_if(
        id.begin(), id.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }, '?');
    return withElement(body, "SessionId", id);
}

inline std::string withNumberForIdentifier(const std::string &body)
{
    const std::string id = element(body, "SessionId");
    const std::size_t firstDigit = id.find_first_not_of('0');
    return withElement(body, "SessionId", id.substr(std::min(firstDigit, id.size())));
}

inline std::string wrapped(const std::string &body)
{
    const std::size_t start = body.find("<Response");
    return body.substr(0, start) + "<Envelope><Body>" + body.substr(start) + "</Body></Envelope>";
}

inline Behaviour needsAskingFirst()
{
    const auto asked = std::make_shared<std::set<std::string>>();
    return oneByOne([=](const Post &post, const Forward &forward) {
        const std::string terminal = element(post.body, "TermId");
        if (!isPayment(post))
            asked->insert(terminal);
        return isPayment(post) && asked->count(terminal) == 0 ? refusal(post) : forward(post);
    });
}

inline Behaviour refusesSessionIdOfAsking()
{
    const auto asked = std::make_shared<std::set<std::string>>();
    return oneByOne([=](const Post &post, const Forward &forward) {
        const std::string id = element(post.body, "SessionId");
        if (!isPayment(post))
            asked->insert(id);
        return isPayment(post) && asked->count(id) != 0 ? refusal(post) : forward(post);
    });
}

/// A ParkingCheck after a payment fails, though it has all that it should have.
inline Behaviour refusesAskingAfterPaying()
{
    const auto paid = std::make_shared<bool>(false);
    return oneByOne([=](const Post &post, const Forward &forward) {
        Reply reply = forward(post);
        if (!isPayment(post) && *paid)
            reply.body = replaced(reply.body, "ResultCode=\"1\"", "ResultCode=\"3\"");
        *paid = isPayment(post) && isSuccess(reply);
        return reply;
    });
}

/// Asking twice in a row costs a hundredth.
inline Behaviour chargesForAsking()
{
    struct State
    {
        bool hasAsked = false;
        Post payment;
    };
    return oneByOne([state = std::make_shared<State>()](const Post &post, const Forward &forward) {
        if (!isPayment(post) && state->hasAsked && !state->payment.body.empty())
            forward(asAnother(state->payment));
        Reply reply = forward(post);
        state->hasAsked = !isPayment(post);
        if (isPayment(post) && isSuccess(reply))
            state->payment = post;
        return reply;
    });
}

/// Looks for an earlier payment when a request comes and keeps the payment when it is answered: two at once are two.
/// @param areAtOnce whether payments come several times at once now: the first of them is held until another comes.
inline Behaviour racesWithItself(const std::function<bool()> &areAtOnce)
{
    struct State
    {
        std::mutex mutex;
        std::condition_variable anotherCame;
        int came = 0;
    };
    return [=, state = std::make_shared<State>()](const Post &post, const Forward &forward) {
        constexpr std::chrono::minutes LIMIT(1);
        if (!isPayment(post) || !areAtOnce())
            return forward(post);
        std::unique_lock<std::mutex> lock(state->mutex);
        if (++state->came > 1) {
            state->anotherCame.notify_all();
            lock.unlock();
            return forward(asAnother(post));
        }
        state->anotherCame.wait_for(lock, LIMIT, [&] { return state->came > 1; });
        return forward(post);
    };
}

/// Registers a payment that it refuses.
inline Behaviour registersRefused()
{
    return [](const Post &post, const Forward &forward) {
        if (element(post.body, "Type") == "whole")
            forward({post.operation, withElement(post.body, "Type", "partial")});
        return forward(post);
    };
}

inline Behaviour registersLessThanAll()
{
    return [](const Post &post, const Forward &forward) {
        if (element(post.body, "Type") != "full")
            return forward(post);
        return forward({post.operation, withElement(post.body, "Amount", "3")});
    };
}
} // namespace ServiceBreaks
