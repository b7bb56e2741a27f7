# Makes an .ipk of the installed files: an ar archive of debian-binary, control.tar.gz and data.tar.gz. No time, owner,
# umask or order of the machine gets in: the same files give the same package to the byte.
set(work ${CPACK_TOPLEVEL_DIRECTORY}/ipk)
set(package ${CPACK_TOPLEVEL_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}.ipk)

# usage: run(FOLDER COMMAND...)
function(run folder)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(make_archive name folder)
    run(${folder} tar --create --file=${work}/${name}.tar --format=ustar --sort=name --mtime=@0 --owner=root:0 --group=root:0
                  --mode=u=rwX,go=rX .)
    run(${work} gzip -9 -n -f ${name}.tar)
endfunction()

file(REMOVE_RECURSE ${work})
file(REMOVE ${package})
file(WRITE ${work}/debian-binary "2.0\n")
file(WRITE ${work}/control/control "\
Package: ${CPACK_MORVESK_NAME}
Version: ${CPACK_MORVESK_VERSION}
Description: ${CPACK_MORVESK_DESCRIPTION}
Section: base
Priority: optional
Maintainer: Morvesk's developers
License: MIT
Architecture: ${CPACK_MORVESK_ARCHITECTURE}
Depends: ${CPACK_MORVESK_DEPENDS}
")
make_archive(control ${work}/control)
make_archive(data ${CPACK_TEMPORARY_DIRECTORY})
run(${work} ${CPACK_MORVESK_AR} qcD ${package} debian-binary control.tar.gz data.tar.gz)
set(CPACK_EXTERNAL_BUILT_PACKAGES ${package})
