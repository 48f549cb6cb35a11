// What several words ask: the instances that names mean, and values staged in a transaction.
#pragma once

#include <string>
#include <vector>

#include "ctl/words/client.h"

/// The instances that the arguments of a word mean.
struct AskedStates {
  std::vector<InstanceState> states;
  Names unknown;        ///< arguments that are the name of no parameter
  bool isList = false;  ///< whether there may be several, whatever there are now
};

/// Asks for their states. A name is that of an instance; the base name of a parameter with indices
/// means all its instances that exist, and so does a pattern with "*" or "?".
AskedStates findStates(Client& client, uint32_t transaction, const Names& asked);

/// Complains of each of the names, with the one that may have been meant.
void complainOfUnknown(Client& client, const Names& names);

/// What the service says of a staged name that it refuses, as a sentence, mostly about "it".
std::string refusalSentence(const std::string& why);

/// Why a follower makes a commit fail, as a sentence.
std::string failureSentence(const Refusal& failing);

/// Stages the values. Ends the program with complaints where one is refused at once.
void stage(Client& client, uint32_t transaction, const std::vector<Assignment>& assignments,
           bool isStatus = false);

/// What a commit would do. Ends the program with complaints where it would refuse something.
Preview previewAccepted(Client& client, uint32_t transaction);

/// What the definitions make of the values before they are judged.
std::vector<std::string> translatedValues(Client& client,
                                          const std::vector<Assignment>& assignments);

/// Complains of what a commit would refuse; returns the exit status.
int complainOfRefusals(Client& client, const std::vector<Refusal>& refused);
