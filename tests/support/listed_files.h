// The list of the files that lie beside the project, with what has to come of each.
#ifndef TESTS_SUPPORT_LISTED_FILES_H
#define TESTS_SUPPORT_LISTED_FILES_H

#include "read_file.h"
#include "shared_data.h"

#include <sstream>
#include <string>
#include <vector>

struct ListedFile {
    std::string file, outcome, reference, md5, warnings;
};

// Of one folder, as "jpeg/".
inline std::vector<ListedFile> listedFiles(const std::string& folder)
{
    std::vector<ListedFile> files;
    std::istringstream list(readFile(sharedPath("MANIFEST.tsv")));
    for (std::string line; std::getline(list, line);) {
        if (!line.starts_with(folder)) continue;
        std::vector<std::string> fields(12);
        std::istringstream cells(line);
        for (std::string& field : fields) std::getline(cells, field, '\t');
        files.push_back({fields[0], fields[8], fields[9], fields[10], fields[11]});
    }
    return files;
}

#endif
