// From the text of a file of any kind to the records of a project.
#pragma once

#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/file_kind.h"
#include "interchange/import_records.h"
#include "store/census_block.h"

namespace zorvel {

// The parser of the kind; a list and a single census give one record. Nothing at all where it is
// told to stop. A text whose cells are separated by semicolons or tabs, so that the parser finds no
// abundance in it, is refused: the advice says so, and the console lines are the parser's alone,
// if any.
Parsed<std::vector<MockCensus>> parseFile(FileKind kind, std::string_view text,
                                          const std::stop_token& stop = {},
                                          NamePool* names = nullptr);

// What the console says, as a part of a sentence for the person at the screen: without the marks of
// the lines, with what the parser advises, and "(empty)" for a cell that has nothing in it.
std::string reasonOf(const std::vector<std::string>& consoleLines, const std::string& advice = {});

// Why no census of a text that was read has a taxon, in words that follow a colon.
const char* whyNoTaxa(const LeftOut& leftOut);

// The records of a new project, ready to be adopted. names: the pool that the censuses were parsed
// with. Each census is released as its record is made.
ProjectRecords recordsOf(std::vector<MockCensus> censuses, std::shared_ptr<NamePool> names);

}  // namespace zorvel
