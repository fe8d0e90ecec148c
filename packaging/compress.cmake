# compress.cmake - man pages and changelog as Debian wants them, in the folder of the package

file(GLOB_RECURSE plain ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/share/man/*.1
	${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/share/doc/velmor/changelog)
if(NOT plain)
	message(FATAL_ERROR "Nothing to compress in ${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
endif()
# Without name and time, so that the same source gives the same package.
execute_process(COMMAND gzip -9nf ${plain} RESULT_VARIABLE failed)
if(failed)
	message(FATAL_ERROR "gzip failed")
endif()
