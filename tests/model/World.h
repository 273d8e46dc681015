// The add-in on a platform without a machine, with everybody around it: the operator, two clients, the clock.
#pragma once

#include <string>
#include <vector>

namespace model {

// What can happen from outside, in the words of the log.
using Steps = std::vector<std::string>;
// All that there is, those that lead far more often than the others.
const Steps& AllSteps();

struct Outcome {
    std::string trouble;  // what came otherwise than it must; empty where all held
    std::string log;      // what was seen, for whoever reads about a failure
};

// Lets a host create the class, register its exchange and show the dialog, and takes the steps one after the
// other. While a call or a box is held open, the steps that follow are taken inside it. In the end all that
// is held goes on, the host answers, the clients let go.
Outcome Play(const Steps& steps);

}  // namespace model
