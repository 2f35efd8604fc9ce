#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "hub/Envelope.h"

namespace sonavault::demohub {

/// An envelope and the connection that it goes out on.
struct Outgoing {
    int connection = 0;
    Envelope envelope;

    bool operator==(const Outgoing&) const = default;
};

/// How long a query may wait for its answer: what it asks for itself, within bounds, so that no
/// query is remembered for ever. Units: milliseconds
std::int64_t queryLimitMs(const Envelope& query);

/// What a hub knows and does, apart from its sockets: who is there, who listens to what, which
/// values are kept and which queries wait.
class HubRouter {
  public:
    /// What follows from an envelope of that connection.
    std::vector<Outgoing> received(int connection, const Envelope& envelope);

    /// The connection has ended, and what it asked for is forgotten.
    void left(int connection);

    /// A publication in the name of `from`, to all who listen.
    std::vector<Outgoing> publish(const std::string& from, const std::string& topic,
                                  const QJsonObject& payload) const;

    /// The asker's own limit has passed: the hub's answer, unless there was one before.
    std::vector<Outgoing> queryTimedOut(const std::string& id);

    /// How many queries were neither answered nor given up.
    std::size_t openQueryCount() const { return askers_.size(); }

    const QJsonObject& state() const { return state_; }

    /// By name, as announced.
    std::vector<std::string> applications() const;

  private:
    std::vector<Outgoing> announce(int connection, const Envelope& envelope);
    std::vector<Outgoing> notify(const Envelope& envelope) const;
    std::vector<Outgoing> stateGet(int connection, const Envelope& envelope) const;
    std::vector<Outgoing> query(int connection, const Envelope& envelope);
    std::vector<Outgoing> passReply(const Envelope& envelope);
    void stateSet(const Envelope& envelope);
    std::vector<Outgoing> toNamed(const std::string& name, const Envelope& envelope) const;

    std::map<int, std::string> names_;
    std::map<int, std::set<std::string>> topics_;
    std::map<std::string, int> askers_;  // by the query's id
    QJsonObject state_;
    int sessions_ = 0;
};

}  // namespace sonavault::demohub
