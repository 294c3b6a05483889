// The bilingual description tables: the network client's codes, the common dialogs' extended codes
// and the shell file operation's result codes. Each text is written once, in UTF-16; the 8-bit
// copies (code page 1251) are made from it at first use.
#include "Utils.CodingStr.h"
#include "Utils.Error.h"

#include <windows.h>
#include <wininet.h>

#include <cwchar>
#include <vector>

namespace Utils {
namespace Error {

namespace {

struct Entry {
    long code;
    const wchar_t* english;
    const wchar_t* russian;
};

// clang-format off
const Entry kSuccess = {0, L"The operation completed successfully.", L"Операция успешно завершена."};

const Entry kInternet[] = {
    {12001,
     L"No more handles could be generated at this time.",
     L"Невозможно сгенерировать дополнительные дескрипторы."},
    {12002,
     L"The request has timed out.",
     L"Запрос просрочен."},
    {12003,
     L"",
     L""},
    {12004,
     L"An internal error has occurred.",
     L"Произошла внутренняя ошибка."},
    {12005,
     L"The URL is invalid.",
     L"Неправильный URL-адрес."},
    {12006,
     L"The URL scheme could not be recognized, or is not supported.",
     L"URL-схема не распознается или не поддерживается."},
    {12007,
     L"The server name could not be resolved.",
     L"Не удалось разрешить имя сервера."},
    {12008,
     L"The requested protocol could not be located.",
     L"Не удалось найти запрошенный протокол."},
    {12009,
     L"A request to InternetQueryOption or InternetSetOption  specified an invalid option value.",
     L"Запрос к InternetQueryOption() или InternetSetOption() содержит недопустимое значение параметра."},
    {12010,
     L"The length of an option supplied to InternetQueryOption or InternetSetOption  is incorrect for the DWORD of option specified.",
     L"Длина параметра, переданного InternetQueryOption() или InternetSetOption(), не соответствует типу указанного параметра."},
    {12011,
     L"The requested option cannot be set, only queried.",
     L"Параметр запроса невозможно задать, можно только запросить."},
    {12012,
     L"WinINet support is being shut down or unloaded.",
     L"Поддержка функции Win32 Internet отключается или выгружена."},
    {12013,
     L"The request to connect and log on to an FTP server could not be completed because the supplied user name is incorrect.",
     L"Не удалось выполнить запрос на подключение и вход на FTP-сервер, поскольку указано неверное имя пользователя."},
    {12014,
     L"The request to connect and log on to an FTP server could not be completed because the supplied password is incorrect.",
     L"Не удалось выполнить запрос на подключение и вход на FTP-сервер, поскольку указан неверный пароль."},
    {12015,
     L"The request to connect and log on to an FTP server failed.",
     L"Не удалось выполнить запрос на подключение и вход на FTP-сервер."},
    {12016,
     L"The requested operation is invalid.",
     L"Запрошенная операция ошибочна."},
    {12017,
     L"The operation was canceled, usually because the handle on which the request was operating was closed before the operation completed.",
     L"Действие было отменено; как правило, это происходит из-за того, что дескриптор, с которым выполнялось действие, был закрыт до его завершения."},
    {12018,
     L"The DWORD of handle supplied is incorrect for this operation.",
     L"Неверный тип обработчика для данного действия."},
    {12019,
     L"The requested operation cannot be carried out because the handle supplied is not in the correct state.",
     L"Запрошенное действие невозможно выполнить из-за некорректного состояния предоставленного дескриптора."},
    {12020,
     L"The request cannot be made via a proxy.",
     L"Запрос невозможно выполнить через прокси-сервер."},
    {12021,
     L"A required registry value could not be located.",
     L"Не удалось найти требуемое значение реестра."},
    {12022,
     L"A required registry value was located but is an incorrect DWORD or has an invalid value.",
     L"Требуемое значение реестра обнаружено, но имеет неправильный тип или недопустимое значение."},
    {12023,
     L"Direct network access cannot be made at this time.",
     L"Невозможно получить прямой доступ к сети в данный момент."},
    {12024,
     L"An asynchronous request could not be made because a zero context value was supplied.",
     L"Не удалось выполнить асинхронный запрос, поскольку указано нулевое контекстное значение."},
    {12025,
     L"An asynchronous request could not be made because a callback function has not been set.",
     L"Не удалось выполнить асинхронный запрос, поскольку не задана функция обратного вызова."},
    {12026,
     L"The required operation could not be completed because one or more requests are pending.",
     L"Не удалось выполнить требуемое действие, поскольку один или несколько запросов находятся в очереди."},
    {12027,
     L"The format of the request is invalid.",
     L"Недопустимый формат запроса."},
    {12028,
     L"The requested item could not be located.",
     L"Не удалось найти запрошенный объект."},
    {12029,
     L"The attempt to connect to the server failed.",
     L"Не удалось подключиться к серверу."},
    {12030,
     L"The connection with the server has been terminated.",
     L"Соединение с сервером было разорвано."},
    {12031,
     L"The connection with the server has been reset.",
     L"Соединение с сервером было сброшено."},
    {12032,
     L"The function needs to redo the request.",
     L"Вызовите функцию Win32 Internet для повторного выполнения запроса."},
    {12033,
     L"The request to the proxy was invalid.",
     L"Недопустимый запрос прокси-сервера."},
    {12034,
     L"A user interface or other blocking operation has been requested.",
     L"Интерфейс пользователя или других операция была запрошена."},
    {12036,
     L"The request failed because the handle already exists.",
     L"Сбой при выполнении запроса: дескриптор уже существует."},
    {12037,
     L"SSL certificate date that was received from the server is bad. The certificate is expired.",
     L"Неправильная дата SSL-сертификата, полученного от сервера. Сертификат просрочен."},
    {12038,
     L"SSL certificate common name (host name field) is incorrect. For example, if you entered www.example.com and the common name on the certificate says www.example.org.",
     L"Неверное общее имя SSL-сертификата (поле \"Имя узла\"). Например, введён адрес www.example.com, а общее имя в сертификате www.example.org."},
    {12039,
     L"The application is moving from a non-SSL to an SSL connection because of a redirect.",
     L"Приложение переходит с подключения без SSL на SSL-подключение из-за перенаправления."},
    {12040,
     L"The application is moving from an SSL to an non-SSL connection because of a redirect.",
     L"Приложение переходит с SSL-подключения на подключение без SSL из-за перенаправления."},
    {12041,
     L"The content is not entirely secure. Some of the content being viewed may have come from unsecured servers.",
     L"Этот код указывает, что содержимое защищено не полностью. Возможно, некоторые из просматриваемых данных получены с незащищенных серверов."},
    {12042,
     L"The application is posting and attempting to change multiple lines of text on a server that is not secure.",
     L"Приложение отправляет данные и пытается изменить несколько строк текста на незащищенном сервере."},
    {12043,
     L"The application is posting data to a server that is not secure.",
     L"Приложение отправляет данные на незащищенный сервер."},
    {12044,
     L"The server is requesting client authentication.",
     L"Сервер запрашивает аутентификацию клиента."},
    {12045,
     L"The function is unfamiliar with the Certificate Authority that generated the server's certificate.",
     L"Функция не знакома с Certificate Authority, сгенерированный сертификат сервера."},
    {12046,
     L"Client authorization is not set up on this computer.",
     L"Авторизацию клиента не установлена на этом компьютере."},
    {12047,
     L"The application could not start an asynchronous thread.",
     L"Приложение не может начать асинхронного потока."},
    {12048,
     L"The function could not handle the redirection, because the scheme changed (for example, HTTP to FTP).",
     L"Эта функция может не производить переадресацию, потому что схема изменилась (например, HTTP, FTP)."},
    {12049,
     L"Another thread has a password dialog box in progress.",
     L"Еще одна нить есть пароль в диалоговом окне прогресса."},
    {12050,
     L"The dialog box should be retried.",
     L"В диалоговом окне должна быть повторен."},
    {12052,
     L"The data being submitted to an SSL connection is being redirected to a non-SSL connection.",
     L"В данных, представленных на SSL-соединение перенаправляется на не-SSL-соединение."},
    {12053,
     L"The request requires a CD-ROM to be inserted in the CD-ROM drive to locate the resource requested.",
     L"Запрос требует компакт-диск будет вставлен в CD-ROM, чтобы найти ресурс просила."},
    {12054,
     L"The requested resource requires Fortezza authentication.",
     L"Запрошенный ресурс требует от сервера аутентификации."},
    {12055,
     L"The SSL certificate contains errors.",
     L"SSL-сертификат содержит ошибки."},
    {12056,
     L"The SSL certificate was not revoked.",
     L"SSL-сертификат не отозван."},
    {12057,
     L"Revocation of the SSL certificate failed.",
     L"Отзыва сертификата SSL не удалось."},
    {12110,
     L"The requested operation cannot be made on the FTP session handle because an operation is already in progress.",
     L"Запрошенную операцию невозможно выполнить для дескриптора FTP-сеанса, так как операция уже выполняется."},
    {12111,
     L"The FTP operation was not completed because the session was aborted.",
     L"FTP-операция не завершена из-за прекращения сеанса."},
    {12112,
     L"Passive mode is not available on the server.",
     L"Пассивный режим не доступен на сервере."},
    {12130,
     L"An error was detected while parsing data returned from the Gopher server.",
     L"При разборе данных, полученных от сервера GOPHER, была обнаружена ошибка."},
    {12131,
     L"The request must be made for a file locator.",
     L"Должен быть выполнен запрос для средства поиска файлов."},
    {12132,
     L"An error was detected while receiving data from the Gopher server.",
     L"При получении данных от сервера gopher была обнаружена ошибка."},
    {12133,
     L"The end of the data has been reached.",
     L"Достигнут конец данных."},
    {12134,
     L"The supplied locator is not valid.",
     L"Представлен неверный указатель."},
    {12135,
     L"The DWORD of the locator is not correct for this operation.",
     L"Неверный тип указателя для данной операции."},
    {12136,
     L"The requested operation can be made only against a Gopher+ server, or with a locator that specifies a Gopher+ operation.",
     L"Запрошенная операция может быть выполнена только с сервером Gopher+ или указателем на операцию Gopher+."},
    {12137,
     L"The requested attribute could not be located.",
     L"Не удалось найти запрошенный атрибут."},
    {12138,
     L"The locator DWORD is unknown.",
     L"Неизвестный тип указателя."},
    {12150,
     L"The requested header could not be located.",
     L"Не удалось найти запрошенный заголовок."},
    {12151,
     L"The server did not return any headers.",
     L"Сервер не возвратил заголовок."},
    {12152,
     L"The server response could not be parsed.",
     L"Не удалось обработать ответ сервера."},
    {12153,
     L"The supplied header is invalid.",
     L"Предоставлен неверный заголовок."},
    {12154,
     L"The request made to HttpQueryInfo is invalid.",
     L"Недопустимый запрос функции \"HttpQueryInfo()\"."},
    {12155,
     L"The header could not be added because it already exists.",
     L"Не удалось добавить заголовок, поскольку он уже существует."},
    {12156,
     L"The redirection failed because either the scheme changed (for example, HTTP to FTP) or all attempts made to redirect failed (default is five attempts).",
     L"Сбой переправления, вызванный или изменением схемы (например, с HTTP на FTP) или неудачным завершением всех попыток перенаправления (по умолчанию пять попыток)."},
    {12157,
     L"The application experienced an internal error loading the SSL libraries.",
     L"В приложении возникла внутренняя ошибка загрузки SSL библиотеки."},
    {12158,
     L"The function was unable to cache the file.",
     L"Функция не для кэширования файлов."},
    {12159,
     L"The required protocol stack is not loaded and the application cannot start WinSock.",
     L"Требуемый стек протоколов не загружается, а приложение не может начать WinSock."},
    {12160,
     L"The HTTP request was not redirected.",
     L"HTTP-запрос не был перенаправлен."},
    {12161,
     L"The HTTP cookie requires confirmation.",
     L"HTTP-cookie требует подтверждения."},
    {12162,
     L"The HTTP cookie was declined by the server.",
     L"HTTP-cookie был отклонен сервером."},
    {12163,
     L"The Internet connection has been lost.",
     L"Интернет-соединение было утеряно."},
    {12164,
     L"The Web site or server indicated is unreachable.",
     L"С сайта или сервера, указанные недоступен."},
    {12165,
     L"The designated proxy server cannot be reached.",
     L"Назначенный прокси-сервер не может быть достигнута."},
    {12166,
     L"There was an error in the automatic proxy configuration script.",
     L"Ошибка в автоматической настройки прокси-скрипт."},
    {12167,
     L"The automatic proxy configuration script could not be downloaded. The INTERNET_FLAG_MUST_CACHE_REQUEST flag was set.",
     L"Автоматическая конфигурация прокси-сервера, сценарий не может быть загружен. В INTERNET_FLAG_MUST_CACHE_REQUEST установлен флаг."},
    {12168,
     L"The redirection requires user confirmation.",
     L"Перенаправление требует подтверждения пользователем."},
    {12169,
     L"SSL certificate is invalid.",
     L"SSL-сертификат является недействительным."},
    {12170,
     L"SSL certificate was revoked.",
     L"SSL сертификат был отозван."},
    {12171,
     L"The function failed due to a security check.",
     L"Функция не удалось из-за проверки."},
    {12172,
     L"Initialization of the WinINet API has not occurred. Indicates that a higher-level function, such as InternetOpen, has not been called yet.",
     L"Инициализация WinINet API не произошло. Указывает, что выше уровня функции, такие как InternetOpen(), не называют."},
    {12173,
     L"Not currently implemented.",
     L"В настоящее время не реализованы."},
    {12174,
     L"The MS-Logoff digest header has been returned from the Web site. This header specifically instructs the digest package to purge credentials for the associated realm. This error will only be returned if INTERNET_ERROR_MASK_LOGIN_FAILURE_DISPLAY_ENTITY_BODY has been set.",
     L"MS-Logoff дайджест заголовок вернулся с сайта. Этот заголовок специально инструктирует дайджест пакета чтобы удалить полномочия, связанные сфере. Эта ошибка будет возвращена только в случае, если INTERNET_ERROR_MASK_LOGIN_FAILURE_DISPLAY_ENTITY_BODY он был установлен."},
    {12175,
     L"WinINet failed to perform content decoding on the response. For more information, see the Content Encoding  topic.",
     L"WinINet не удалось выполнить содержание декодирования на ответ."},
};

const Entry kCommonDialog[] = {
    {0x0001,
     L"The lStructSize member of the initialization structure for the corresponding common dialog box is invalid.",
     L"Член \"lStructSize\" из структуры инициализации для соответствующего стандартного диалогового окна недопустим."},
    {0x0002,
     L"The common dialog box function failed during initialization. This error often occurs when sufficient memory is not available.",
     L"Функция стандартного диалогового окна потерпела неудачу в ходе инициализации. Эта ошибка часто происходит, если памяти не достаточно."},
    {0x0003,
     L"The ENABLETEMPLATE flag was set in the Flags member of the initialization structure for the corresponding common dialog box, but you failed to provide a corresponding template.",
     L"Флаг ENABLETEMPLATE был установлен в Flags члена структуры инициализации для соответствующего стандартного диалогового окна, но вы не сумели предоставить соответствующий шаблон."},
    {0x0004,
     L"The ENABLETEMPLATE flag was set in the Flags member of the initialization structure for the corresponding common dialog box, but you failed to provide a corresponding instance handle.",
     L"Флаг ENABLETEMPLATE был установлен в Flags члена структуры инициализации для соответствующего стандартного диалогового окна, но вы не сумели предоставить соответствующий дескриптор экземпляра."},
    {0x0005,
     L"The common dialog box function failed to load a specified string.",
     L"Функция стандартного диалогового окна не удалось загрузить указанную строку."},
    {0x0006,
     L"The common dialog box function failed to find a specified resource.",
     L"Функция стандартного диалогового окна не удалось найти указанный ресурс."},
    {0x0007,
     L"The common dialog box function failed to load a specified resource.",
     L"Функция стандартного диалогового окна не удалось загрузить указанный ресурс."},
    {0x0008,
     L"The common dialog box function failed to lock a specified resource.",
     L"Функция стандартного диалогового окна не в состоянии заблокировать указанный ресурс."},
    {0x0009,
     L"The common dialog box function was unable to allocate memory for internal structures.",
     L"Функция стандартного диалогового окна не смогла выделить память для внутренних структур."},
    {0x000A,
     L"The common dialog box function was unable to lock the memory associated with a handle.",
     L"Функция стандартного диалогового окна не смогла закрепить память, связанную с дескриптором."},
    {0x000B,
     L"The ENABLEHOOK flag was set in the Flags member of the initialization structure for the corresponding common dialog box, but you failed to provide a pointer to a corresponding hook procedure.",
     L"Флаг ENABLEHOOK был установлен в Flags члена структуры инициализации для соответствующего стандартного диалогового окна, но вы не сумели предоставить указатель на соответствующей HOOK-процедуры."},
    {0x000C,
     L"The RegisterWindowMessage function returned an error code when it was called by the common dialog box function.",
     L"Функция \"RegisterWindowMessage()\" вернула код ошибки, когда она вызывалась функцией стандартного диалогового окна."},
    {0x1001,
     L"The PrintDlg function failed to load the required resources.",
     L"Функции \"PrintDlg\" не удалось загрузить необходимые ресурсы."},
    {0x1002,
     L"The PrintDlg function failed to parse the strings in the [devices] section of the WIN.INI file.",
     L"Функции \"PrintDlg\" не удалось разобрать строки в раздел файла WIN.INI [устройства]."},
    {0x1003,
     L"The PD_RETURNDEFAULT flag was specified in the Flags member of the PRINTDLG structure, but the hDevMode or hDevNames member was not NULL.",
     L"Флаг PD_RETURNDEFAULT был определен во флагах члена PRINTDLG структуры, но член hDevMode или hDevNames не NULL."},
    {0x1004,
     L"The PrintDlg function failed to load the device driver for the specified printer.",
     L"Функции \"PrintDlg\" не удалось загрузить драйвер устройства для указанного принтера."},
    {0x1005,
     L"The printer driver failed to initialize a DEVMODE structure.",
     L"Драйвер принтера не удалось инициализировать структуру DEVMODE."},
    {0x1006,
     L"The PrintDlg function failed during initialization, and there is no more specific extended error code to describe the failure. This is the generic default error code for the function.",
     L"Вызов функции \"PrintDlg\" не удался во время инициализации, и нет более конкретной расширенного кода ошибки, описывающий ошибку. Это базовый код ошибки по умолчанию для функции."},
    {0x1007,
     L"No printer drivers were found.",
     L"Не было обнаружено никаких драйверов принтера."},
    {0x1008,
     L"A default printer does not exist.",
     L"Принтер по умолчанию не существует."},
    {0x1009,
     L"The data in the DEVMODE and DEVNAMES structures describes two different printers.",
     L"Данные в структурах DEVMODE и DEVNAMES описывают два различных принтеров."},
    {0x100A,
     L"The PrintDlg function failed when it attempted to create an information context.",
     L"Функция \"PrintDlg\" потерпела неудачу, когда попыталась создать информационный контекст."},
    {0x100B,
     L"The [devices] section of the WIN.INI file did not contain an entry for the requested printer.",
     L"Раздел файле WIN.INI [устройства] не содержит записи для запрашиваемого принтера."},
    {0x100C,
     L"You called the PrintDlg function with the DN_DEFAULTPRN flag specified in the wDefault member of the DEVNAMES structure, but the printer described by the other structure members did not match the current default printer.\r\nThis error occurs when you store the DEVNAMES structure, and the user changes the default printer by using the Control Panel.\r\nTo use the printer described by the DEVNAMES structure, clear the DN_DEFAULTPRN flag and call PrintDlg again.\r\nTo use the default printer, replace the DEVNAMES structure (and the structure, if one exists) with NULL; and call PrintDlg again.",
     L"Вызвана функция \"PrintDlg()\" с флагом DN_DEFAULTPRN, определенным в элементе wDefault в структуре DEVNAMES, но принтер описывается другими членами структуры, не соответствует текущей принтер по умолчанию.\r\nЭта ошибка возникает при сохранении структуры DEVNAMES, и пользователь изменяет принтер по умолчанию, с помощью панели управления.\r\nДля использования принтера, описанный в DEVNAMES структуры, сбросьте бит флажка DN_DEFAULTPRN и вызвать функцию \"PrintDlg()\" снова.\r\nЧтобы использовать принтер по умолчанию, замените структуру DEVNAMES (и структуру, если таковой существует) с NULL, и вызвать функцию \"PrintDlg()\" снова."},
    {0x2001,
     L"No fonts exist.",
     L"Не существует шрифты."},
    {0x2002,
     L"The size specified in the nSizeMax member of the CHOOSEFONT structure is less than the size specified in the nSizeMin member.",
     L"Размер, указанный в элементе nSizeMax в структуре CHOOSEFONT меньше размера, указанного в элементе nSizeMin."},
    {0x3001,
     L"An attempt to subclass a list box failed because sufficient memory was not available.",
     L"Попытка окна создать подкласс списка потерпела неудачу, из-за нехватки памяти был не доступен."},
    {0x3002,
     L"A file name is invalid.",
     L"Недопустимое имя файла."},
    {0x3003,
     L"The buffer pointed to by the lpstrFile member of the OPENFILENAME structure is too small for the file name specified by the user.\r\nThe first two bytes of the lpstrFile buffer contain an integer value specifying the size required to receive the full name, in characters.",
     L"Буфер, на который указывает член lpstrFile из структуры OPENFILENAME слишком мал для имени файла, указанного пользователем.\r\nПервые два байта буфера lpstrFile содержать целое значение, определяющее размер, требуемый для получения полного имени, в символах."},
    {0x4001,
     L"A member of the FINDREPLACE structure points to an invalid buffer.",
     L"Член структуры FINDREPLACE указывает на недопустимый буфер."},
    {0xFFFF,
     L"The dialog box could not be created. The common dialog box function's call to the DialogBox function failed. For example, this error occurs if the common dialog box call specifies an invalid window handle.",
     L"Диалоговое окно не может быть создано. Вызов стандартного диалогового окна функции DialogBox не удалось. Эта ошибка возникает, если стандартное диалоговое окно вызывает задает неверный дескриптор окна."},
};

const Entry kShellOperation[] = {
    {0x00071,
     L"The source and destination files are the same file.",
     L"Пути исходного и конечного файлов одинаковы."},
    {0x00072,
     L"Multiple file paths were specified in the source buffer, but only one destination file path.",
     L"Пути нескольких файлов были указаны в исходном буфере, но только один из них путь к файлу."},
    {0x00073,
     L"Rename operation was specified but the destination path is a different directory. Use the move operation instead.",
     L"Указана операция переименования, но путь назначения является другой каталог. Используйте операцию перемещения."},
    {0x00074,
     L"The source is a root directory, which cannot be moved or renamed.",
     L"Источники корневые каталоги, которые не могут быть перемещены или переименованы."},
    {0x00075,
     L"The operation was canceled by the user, or silently canceled if the appropriate flags were supplied to SHFileOperation.",
     L"Операция была отменена пользователем, или отменена по умолчанию."},
    {0x00076,
     L"The destination is a subtree of the source.",
     L"Путь назначения поддерево пути источника."},
    {0x00078,
     L"Security settings denied access to the source.",
     L"Настройки защиты отказывают в доступе к пути источника."},
    {0x00079,
     L"The source or destination path exceeded or would exceed MAX_PATH.",
     L"Пути источника или назначения превысили или превысят MAX_PATH."},
    {0x0007A,
     L"The operation involved multiple destination paths, which can fail in the case of a move operation.",
     L"В операции участвовало несколько путей назначения, которые могут потерпеть неудачу в случае операции перемещения."},
    {0x0007C,
     L"The path in the source or destination or both was invalid.",
     L"Путь в источнике или назначения недействителен."},
    {0x0007D,
     L"The source and destination have the same parent folder.",
     L"Пути источника и назначения имеют одинаковую родительскую папку."},
    {0x0007E,
     L"The destination path is an existing file.",
     L"Путь назначения существующего файла."},
    {0x00080,
     L"The destination path is an existing folder.",
     L"Путь назначения существующей папки."},
    {0x00081,
     L"The name of the file exceeds MAX_PATH.",
     L"Имя файла превышает MAX_PATH."},
    {0x00082,
     L"The destination is a read-only CD-ROM, possibly unformatted.",
     L"Путь назначения только для чтения CD-ROM, возможно не форматированный."},
    {0x00083,
     L"The destination is a read-only DVD, possibly unformatted.",
     L"Путь назначения только для чтения DVD, возможно не форматированный."},
    {0x00084,
     L"The destination is a writable CD-ROM, possibly unformatted.",
     L"Путь назначения для записи CD-ROM, возможно не форматированный."},
    {0x00085,
     L"The file involved in the operation is too large for the destination media or file system.",
     L"Файлы, участвующие в операции являются слишком большими."},
    {0x00086,
     L"The source is a read-only CD-ROM, possibly unformatted.",
     L"Источник только для чтения CD-ROM, возможно не форматированный."},
    {0x00087,
     L"The source is a read-only DVD, possibly unformatted.",
     L"Источник только для чтения DVD, возможно не форматированный."},
    {0x00088,
     L"The source is a writable CD-ROM, possibly unformatted.",
     L"Источник для записи CD-ROM, возможно не форматированный."},
    {0x000B7,
     L"MAX_PATH was exceeded during the operation.",
     L"MAX_PATH был превышен во время операции."},
    {0x00402,
     L"An unknown error occurred. This is typically due to an invalid path in the source or destination. This error does not occur on Windows Vista and later.",
     L"Неизвестная ошибка. Это, как правило, из-за неверного пути в источнике или назначения."},
    {0x10000,
     L"An unspecified error occurred on the destination.",
     L"Неизвестная ошибка по пути назначения."},
    {0x10074,
     L"Destination is a root directory and cannot be renamed.",
     L"Путь является корневым каталогом и не может быть переименован."},
};

// clang-format on

enum class CodeText { Decimal, Hex4, Hex5 };

struct Table {
    const Entry* entries;
    size_t count;
    CodeText codeText;
};

const Table kInternetTable = {kInternet, sizeof(kInternet) / sizeof(kInternet[0]), CodeText::Decimal};
const Table kDialogTable = {kCommonDialog, sizeof(kCommonDialog) / sizeof(kCommonDialog[0]), CodeText::Hex4};
const Table kShellTable = {kShellOperation, sizeof(kShellOperation) / sizeof(kShellOperation[0]),
                           CodeText::Hex5};

std::wstring Header(const Table& table, const long code) {
    wchar_t text[32] = {};
    const wchar_t* format = table.codeText == CodeText::Hex4   ? L"0x%04lX"
                            : table.codeText == CodeText::Hex5 ? L"0x%05lX"
                                                               : L"%ld";
    std::swprintf(text, 32, format, code);
    return std::wstring(L"\r\nLast Error: ") + text + L".\r\n\r\n";
}

// The entry's block; code 0 is the shared success entry, always with its decimal code text.
std::wstring Block(const Table& table, const Entry& entry) {
    const Table& layout = &entry == &kSuccess ? kInternetTable : table;
    return Header(layout, entry.code) + entry.english + L"\r\n\r\n" + entry.russian + L"\r\n\r\n";
}

const Entry* Find(const Table& table, const long code) {
    if (code == 0)
        return &kSuccess;
    for (size_t i = 0; i < table.count; ++i)
        if (table.entries[i].code == code)
            return &table.entries[i];
    return nullptr;
}

// The 8-bit copy of a table's blocks, index by index; the success block comes last.
std::vector<std::string> Narrow(const Table& table) {
    std::vector<std::string> copy;
    copy.reserve(table.count + 1);
    for (size_t i = 0; i < table.count; ++i)
        copy.push_back(CodingStr::UnicodeToAnsi(Block(table, table.entries[i]), 1251));
    copy.push_back(CodingStr::UnicodeToAnsi(Block(table, kSuccess), 1251));
    return copy;
}

// An entry's block from the table's 8-bit copy, which the first call makes.
template <const Table& table> std::string NarrowBlock(const Entry& entry) {
    static const std::vector<std::string> copy = Narrow(table);
    return &entry == &kSuccess ? copy.back() : copy[static_cast<size_t>(&entry - table.entries)];
}

const long kServerResponse = 12003;
// The describer's notices name its own source and lines, fixed on purpose (see TOVARIN_FIXED_SITE).
const char kDescriberSource[] = "Utils.Error.cpp";
const Site kInternetWSite =
    TOVARIN_FIXED_SITE(TOVARIN_WSTRING " __cdecl Utils::Error::InternetW(const long)", kDescriberSource, 825);
const Site kInternetASite =
    TOVARIN_FIXED_SITE(TOVARIN_STRING " __cdecl Utils::Error::InternetA(const long)", kDescriberSource, 825);
const wchar_t kResponseFailed[] = L"Ошибка получения расширенного описания интернет-ошибки.";

// The server's last response, without the terminating zero that the length counts.
template <class Char, class Query>
std::basic_string<Char> ServerResponse(Query query, const Site& site, const wchar_t* caption) {
    DWORD error = 0;
    DWORD length = 0;
    query(&error, nullptr, &length);
    std::basic_string<Char> buffer(length, Char());
    if (!query(&error, length == 0 ? nullptr : &buffer[0], &length))
        ShowNoticeW(caption, ComposeFailureTextW(WhereW(site), kResponseFailed, false));
    if (!buffer.empty())
        buffer.pop_back();
    return buffer;
}

} // namespace

std::wstring InternetW(const long code) {
    if (code == kServerResponse)
        return Header(kInternetTable, code) +
               ServerResponse<wchar_t>(
                   [](DWORD* error, wchar_t* buffer, DWORD* length) {
                       return ::InternetGetLastResponseInfoW(error, buffer, length) != FALSE;
                   },
                   kInternetWSite, L"Utils::Error::InternetW") +
               L"\r\n\r\n";
    const Entry* entry = Find(kInternetTable, code);
    return entry != nullptr ? Block(kInternetTable, *entry)
                            : SystemDescriptionW(static_cast<unsigned long>(code));
}

std::string InternetA(const long code) {
    if (code == kServerResponse)
        return "\r\nLast Error: 12003.\r\n\r\n" +
               ServerResponse<char>(
                   [](DWORD* error, char* buffer, DWORD* length) {
                       return ::InternetGetLastResponseInfoA(error, buffer, length) != FALSE;
                   },
                   kInternetASite, L"Utils::Error::InternetA") +
               "\r\n\r\n";
    const Entry* entry = Find(kInternetTable, code);
    return entry != nullptr ? NarrowBlock<kInternetTable>(*entry)
                            : SystemDescriptionA(static_cast<unsigned long>(code));
}

template <> std::wstring DescriptionW<long>(long) {
    const unsigned long code = ::GetLastError();
    if (code - 12001ul <= 174ul)
        return InternetW(static_cast<long>(code));
    return SystemDescriptionW(code);
}

namespace detail {

std::wstring DialogDescriptionOfLastError() {
    return CommonDialogDescriptionW(static_cast<unsigned short>(::GetLastError()));
}

std::wstring ShellDescriptionOfLastError() {
    const int code = static_cast<int>(::GetLastError());
    const Site site = TOVARIN_FIXED_SITE(TOVARIN_WSTRING " __cdecl Utils::Error::DescriptionW<int>(int)",
                                         kDescriberSource, 522);
    ShowNoticeW(
        L"Utils::Error::DescriptionW",
        ComposeFailureTextW(WhereW(site),
                            L"Для функций библиотеки \"Shell32.dll\" не предусмотренно автоматическое "
                            L"получение кода ошибки.",
                            false));
    return ShellOperationDescriptionW(code);
}

std::wstring UnknownCodeType() {
    const char* const signature = TOVARIN_WSTRING " __cdecl Utils::Error::DescriptionW<T>(T)";
    const Site site = TOVARIN_FIXED_SITE(signature, kDescriberSource, __LINE__);
    ShowNoticeW(L"Utils::Error::DescriptionW",
                ComposeFailureTextW(
                    WhereW(site),
                    L"Непредусмотренный тип данных ошибки. Тип может быть LONG или WORD или INT.", false));
    return std::wstring();
}

} // namespace detail

} // namespace Error
} // namespace Utils

std::wstring CommonDialogDescriptionW(unsigned long code) {
    using namespace Utils::Error;
    const Entry* entry = Find(kDialogTable, static_cast<long>(code));
    return entry != nullptr ? Block(kDialogTable, *entry) : SystemDescriptionW(code);
}

std::string CommonDialogDescriptionA(unsigned long code) {
    using namespace Utils::Error;
    const Entry* entry = Find(kDialogTable, static_cast<long>(code));
    return entry != nullptr ? NarrowBlock<kDialogTable>(*entry) : SystemDescriptionA(code);
}

std::wstring ShellOperationDescriptionW(int code) {
    using namespace Utils::Error;
    const Entry* entry = Find(kShellTable, static_cast<long>(code));
    return entry != nullptr ? Block(kShellTable, *entry)
                            : SystemDescriptionW(static_cast<unsigned long>(code));
}
