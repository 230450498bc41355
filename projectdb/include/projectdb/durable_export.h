#pragma once

#include <string>

#include <kel/export.h>

namespace projectdb {

class KelProjectDatabase;

/// Writes the project to a file as KelProjectDatabase::ExportProjectData does, but so that the path
/// holds the former file or the new one, whole, at every moment, whatever ends the process or the
/// machine. On return the new file is on the disk. Does nothing if there is no project or the path
/// is empty.
///
/// What a load would not give back is refused, while ExportProjectData writes it: a flow process
/// under any other name than its own, a filled parameter map that the format does not have, a
/// parameter that is stored under another key than its name or whose value does not go with its
/// type, a constraint or ISF file without a name. Plain parameters of a process, maps without
/// parameters and the number of a type that has no text are in no file. The project is tested in
/// the moment in which it is copied to be written.
///
/// The project is written to a new file in the same directory, which then takes the place of the
/// former one. Hence:
/// - The process must be allowed to create files in the directory, to list it, and to write the
///   former file: one that is protected against writing is not replaced.
/// - A symbolic link at the path stays, and the file that it leads to is replaced or created. A
///   hard link is separated from its other names.
/// - The new file has the permission bits and the access control list of the former one, and its
///   group and owner if the process may give them away. Where it may not give the group, the new
///   group gets no permission that all others do not have. Other extended attributes are not kept.
///   A file that was not there gets the permissions that any new file gets.
/// - A process that is killed may leave a file ".kel_save_…", of no use, in the directory. The next
///   save there removes it.
///
/// On Windows the new file has the access control list of the former one, and its attributes for
/// being hidden, of the system or not indexed; its owner is who saves, and alternate streams are
/// not kept. Others may have the former file open if they share it for deletion, and keep it; where
/// they do not, or where the file system does not know such a renaming and anybody has it open, the
/// save tries for a second and a bit, and then fails. The renaming itself is written through to the
/// disk, so that no step is left that could fail with the new file in place.
///
/// Threads: as ExportProjectData. Several threads and processes may save to one path; the project
/// of the last one stays.
///
/// @param database the object with the project
/// @param path native path; at a directory, a device or a pipe nothing is written, nor on Windows
///        under a name that is not UTF-8 text
/// @exception std::runtime_error "Failed writing XML file " + path + ": " + reason + "\n" in all
///            cases in which ExportProjectData throws it or xercesc::IOException, if the project is
///            refused, and if a step of the replacement fails. The former file is then as it was,
///            and no other file is left. Only if the last step fails, which brings the directory to
///            the disk, the new file is in place already, and the former one may be back after a
///            failure of the machine.
/// @exception std::bad_alloc with the former file as it was
KEL_EXPORT void ExportProjectDataDurably(const KelProjectDatabase& database,
                                         const std::string& path);

}  // namespace projectdb
