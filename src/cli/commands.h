#pragma once

#include "cli/session.h"

#include <ostream>

namespace finora::cli {

// One function per command: it reads its arguments from the session, writes what it has to say
// to `out` and returns the exit status; a failure is thrown as a Failure.

// Commands that read a ledger or a filter file.
int cmdInfo(Session& s, std::ostream& out);
int cmdDump(Session& s, std::ostream& out);
int cmdList(Session& s, std::ostream& out);
int cmdExport(Session& s, std::ostream& out);
int cmdCash(Session& s, std::ostream& out);
int cmdYear(Session& s, std::ostream& out);
int cmdReport(Session& s, std::ostream& out);
int cmdChart(Session& s, std::ostream& out);
int cmdShowFilter(Session& s, std::ostream& out);

// Commands that write a ledger or a filter file.
int cmdNew(Session& s, std::ostream& out);
int cmdConvert(Session& s, std::ostream& out);
int cmdGenerate(Session& s, std::ostream& out);
int cmdImport(Session& s, std::ostream& out);
int cmdLock(Session& s, std::ostream& out);
int cmdUnlock(Session& s, std::ostream& out);
int cmdSaveFilter(Session& s, std::ostream& out);
// Adds a bank statement's entries, each once.
int cmdImportStatement(Session& s, std::ostream& out);

// The ledger's categorisation rules, and the category they and its filing suggest.
int cmdRules(Session& s, std::ostream& out);
int cmdRuleAdd(Session& s, std::ostream& out);
int cmdRuleDel(Session& s, std::ostream& out);
int cmdSuggest(Session& s, std::ostream& out);
// One operation through the operation editor's own rules.
int cmdAdd(Session& s, std::ostream& out);

} // namespace finora::cli
