#include "cli/Command.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "cli/LocalWords.h"

namespace cli {
namespace {

CLI::Option* complete(CLI::Option* option, const Command::Argument& argument) {
  option->type_name(argument.valueName);
  option->required(argument.isRequired);
  if (argument.check != nullptr) {
    // With no description: the help says nothing of it.
    option->check(CLI::Validator(argument.check, ""));
  }
  return option;
}

template <class Value>
CLI::Option* addTo(CLI::App& app, const Command::Argument& argument, Value& value) {
  return complete(app.add_option(argument.name, value, argument.description), argument);
}

}  // namespace

Command::Command(CLI::App& parent, const char* name, const char* description)
    : m_app(parent.add_subcommand(name, description)) {}

Command::Command(Command& parent, const char* name, const char* description)
    : Command(*parent.m_app, name, description) {}

void Command::add(const Argument& argument, std::string& value) {
  addTo(*m_app, argument, value);
}

void Command::add(const Argument& argument, std::vector<std::string>& values) {
  addTo(*m_app, argument, values);
}

void Command::add(const Argument& argument, std::uint64_t& value) {
  addTo(*m_app, argument, value);
}

void Command::add(const Argument& argument, unsigned& value, unsigned least, unsigned most) {
  addTo(*m_app, argument, value)->check(CLI::Range(least, most).description(""));
}

void Command::addFlag(const char* name, const char* description, bool& value) {
  m_app->add_flag(name, value, description);
}

void Command::showOnlyWithHosts() {
  if (!hasHosts()) {
    m_app->group("");
  }
}

void Command::showOnlyWithHosts(const char* option) {
  if (!hasHosts()) {
    m_app->get_option(option)->group("");
  }
}

void Command::takeOneCommandAtMost() {
  m_app->require_subcommand(0, 1);
}

void Command::setFooter(const char* text) {
  m_app->footer(toLocalHelp(text));
}

void Command::onChosen(std::function<void()> run) {
  m_app->callback(std::move(run));
}

void Command::refuse(const char* reason) {
  throw CLI::ArgumentMismatch(reason, CLI::ExitCodes::ArgumentMismatch);
}

}  // namespace cli
