// The bilingual description tables: every entry's block exactly as laid out, the codes without
// an entry falling back to the system's text, code 0, the server-response case, the 8-bit copies
// and the type branches of the describer.
#include "support/BoxRecorder.h"

#include "utils/Utils.CodingStr.h"
#include "utils/Utils.Error.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

using TestSupport::Box;
using TestSupport::BoxRecorder;
using Utils::Error::SystemDescriptionA;
using Utils::Error::SystemDescriptionW;

namespace {

struct Expected {
    long code;
    const wchar_t* block;
};

// The expected blocks, written out whole: code text, English, Russian and the layout around them.
// clang-format off
const Expected kExpectedInternet[] = {
    {12001, L"\r\nLast Error: 12001.\r\n\r\n" L"No more handles could be generated at this time." L"\r\n\r\n" L"Невозможно сгенерировать дополнительные дескрипторы." L"\r\n\r\n"},
    {12002, L"\r\nLast Error: 12002.\r\n\r\n" L"The request has timed out." L"\r\n\r\n" L"Запрос просрочен." L"\r\n\r\n"},
    {12003, L"\r\nLast Error: 12003.\r\n\r\n" L"" L"\r\n\r\n" L"" L"\r\n\r\n"},
    {12004, L"\r\nLast Error: 12004.\r\n\r\n" L"An internal error has occurred." L"\r\n\r\n" L"Произошла внутренняя ошибка." L"\r\n\r\n"},
    {12005, L"\r\nLast Error: 12005.\r\n\r\n" L"The URL is invalid." L"\r\n\r\n" L"Неправильный URL-адрес." L"\r\n\r\n"},
    {12006, L"\r\nLast Error: 12006.\r\n\r\n" L"The URL scheme could not be recognized, or is not supported." L"\r\n\r\n" L"URL-схема не распознается или не поддерживается." L"\r\n\r\n"},
    {12007, L"\r\nLast Error: 12007.\r\n\r\n" L"The server name could not be resolved." L"\r\n\r\n" L"Не удалось разрешить имя сервера." L"\r\n\r\n"},
    {12008, L"\r\nLast Error: 12008.\r\n\r\n" L"The requested protocol could not be located." L"\r\n\r\n" L"Не удалось найти запрошенный протокол." L"\r\n\r\n"},
    {12009, L"\r\nLast Error: 12009.\r\n\r\n" L"A request to InternetQueryOption or InternetSetOption  specified an invalid option value." L"\r\n\r\n" L"Запрос к InternetQueryOption() или InternetSetOption() содержит недопустимое значение параметра." L"\r\n\r\n"},
    {12010, L"\r\nLast Error: 12010.\r\n\r\n" L"The length of an option supplied to InternetQueryOption or InternetSetOption  is incorrect for the DWORD of option specified." L"\r\n\r\n" L"Длина параметра, переданного InternetQueryOption() или InternetSetOption(), не соответствует типу указанного параметра." L"\r\n\r\n"},
    {12011, L"\r\nLast Error: 12011.\r\n\r\n" L"The requested option cannot be set, only queried." L"\r\n\r\n" L"Параметр запроса невозможно задать, можно только запросить." L"\r\n\r\n"},
    {12012, L"\r\nLast Error: 12012.\r\n\r\n" L"WinINet support is being shut down or unloaded." L"\r\n\r\n" L"Поддержка функции Win32 Internet отключается или выгружена." L"\r\n\r\n"},
    {12013, L"\r\nLast Error: 12013.\r\n\r\n" L"The request to connect and log on to an FTP server could not be completed because the supplied user name is incorrect." L"\r\n\r\n" L"Не удалось выполнить запрос на подключение и вход на FTP-сервер, поскольку указано неверное имя пользователя." L"\r\n\r\n"},
    {12014, L"\r\nLast Error: 12014.\r\n\r\n" L"The request to connect and log on to an FTP server could not be completed because the supplied password is incorrect." L"\r\n\r\n" L"Не удалось выполнить запрос на подключение и вход на FTP-сервер, поскольку указан неверный пароль." L"\r\n\r\n"},
    {12015, L"\r\nLast Error: 12015.\r\n\r\n" L"The request to connect and log on to an FTP server failed." L"\r\n\r\n" L"Не удалось выполнить запрос на подключение и вход на FTP-сервер." L"\r\n\r\n"},
    {12016, L"\r\nLast Error: 12016.\r\n\r\n" L"The requested operation is invalid." L"\r\n\r\n" L"Запрошенная операция ошибочна." L"\r\n\r\n"},
    {12017, L"\r\nLast Error: 12017.\r\n\r\n" L"The operation was canceled, usually because the handle on which the request was operating was closed before the operation completed." L"\r\n\r\n" L"Действие было отменено; как правило, это происходит из-за того, что дескриптор, с которым выполнялось действие, был закрыт до его завершения." L"\r\n\r\n"},
    {12018, L"\r\nLast Error: 12018.\r\n\r\n" L"The DWORD of handle supplied is incorrect for this operation." L"\r\n\r\n" L"Неверный тип обработчика для данного действия." L"\r\n\r\n"},
    {12019, L"\r\nLast Error: 12019.\r\n\r\n" L"The requested operation cannot be carried out because the handle supplied is not in the correct state." L"\r\n\r\n" L"Запрошенное действие невозможно выполнить из-за некорректного состояния предоставленного дескриптора." L"\r\n\r\n"},
    {12020, L"\r\nLast Error: 12020.\r\n\r\n" L"The request cannot be made via a proxy." L"\r\n\r\n" L"Запрос невозможно выполнить через прокси-сервер." L"\r\n\r\n"},
    {12021, L"\r\nLast Error: 12021.\r\n\r\n" L"A required registry value could not be located." L"\r\n\r\n" L"Не удалось найти требуемое значение реестра." L"\r\n\r\n"},
    {12022, L"\r\nLast Error: 12022.\r\n\r\n" L"A required registry value was located but is an incorrect DWORD or has an invalid value." L"\r\n\r\n" L"Требуемое значение реестра обнаружено, но имеет неправильный тип или недопустимое значение." L"\r\n\r\n"},
    {12023, L"\r\nLast Error: 12023.\r\n\r\n" L"Direct network access cannot be made at this time." L"\r\n\r\n" L"Невозможно получить прямой доступ к сети в данный момент." L"\r\n\r\n"},
    {12024, L"\r\nLast Error: 12024.\r\n\r\n" L"An asynchronous request could not be made because a zero context value was supplied." L"\r\n\r\n" L"Не удалось выполнить асинхронный запрос, поскольку указано нулевое контекстное значение." L"\r\n\r\n"},
    {12025, L"\r\nLast Error: 12025.\r\n\r\n" L"An asynchronous request could not be made because a callback function has not been set." L"\r\n\r\n" L"Не удалось выполнить асинхронный запрос, поскольку не задана функция обратного вызова." L"\r\n\r\n"},
    {12026, L"\r\nLast Error: 12026.\r\n\r\n" L"The required operation could not be completed because one or more requests are pending." L"\r\n\r\n" L"Не удалось выполнить требуемое действие, поскольку один или несколько запросов находятся в очереди." L"\r\n\r\n"},
    {12027, L"\r\nLast Error: 12027.\r\n\r\n" L"The format of the request is invalid." L"\r\n\r\n" L"Недопустимый формат запроса." L"\r\n\r\n"},
    {12028, L"\r\nLast Error: 12028.\r\n\r\n" L"The requested item could not be located." L"\r\n\r\n" L"Не удалось найти запрошенный объект." L"\r\n\r\n"},
    {12029, L"\r\nLast Error: 12029.\r\n\r\n" L"The attempt to connect to the server failed." L"\r\n\r\n" L"Не удалось подключиться к серверу." L"\r\n\r\n"},
    {12030, L"\r\nLast Error: 12030.\r\n\r\n" L"The connection with the server has been terminated." L"\r\n\r\n" L"Соединение с сервером было разорвано." L"\r\n\r\n"},
    {12031, L"\r\nLast Error: 12031.\r\n\r\n" L"The connection with the server has been reset." L"\r\n\r\n" L"Соединение с сервером было сброшено." L"\r\n\r\n"},
    {12032, L"\r\nLast Error: 12032.\r\n\r\n" L"The function needs to redo the request." L"\r\n\r\n" L"Вызовите функцию Win32 Internet для повторного выполнения запроса." L"\r\n\r\n"},
    {12033, L"\r\nLast Error: 12033.\r\n\r\n" L"The request to the proxy was invalid." L"\r\n\r\n" L"Недопустимый запрос прокси-сервера." L"\r\n\r\n"},
    {12034, L"\r\nLast Error: 12034.\r\n\r\n" L"A user interface or other blocking operation has been requested." L"\r\n\r\n" L"Интерфейс пользователя или других операция была запрошена." L"\r\n\r\n"},
    {12036, L"\r\nLast Error: 12036.\r\n\r\n" L"The request failed because the handle already exists." L"\r\n\r\n" L"Сбой при выполнении запроса: дескриптор уже существует." L"\r\n\r\n"},
    {12037, L"\r\nLast Error: 12037.\r\n\r\n" L"SSL certificate date that was received from the server is bad. The certificate is expired." L"\r\n\r\n" L"Неправильная дата SSL-сертификата, полученного от сервера. Сертификат просрочен." L"\r\n\r\n"},
    {12038, L"\r\nLast Error: 12038.\r\n\r\n" L"SSL certificate common name (host name field) is incorrect. For example, if you entered www.example.com and the common name on the certificate says www.example.org." L"\r\n\r\n" L"Неверное общее имя SSL-сертификата (поле \"Имя узла\"). Например, введён адрес www.example.com, а общее имя в сертификате www.example.org." L"\r\n\r\n"},
    {12039, L"\r\nLast Error: 12039.\r\n\r\n" L"The application is moving from a non-SSL to an SSL connection because of a redirect." L"\r\n\r\n" L"Приложение переходит с подключения без SSL на SSL-подключение из-за перенаправления." L"\r\n\r\n"},
    {12040, L"\r\nLast Error: 12040.\r\n\r\n" L"The application is moving from an SSL to an non-SSL connection because of a redirect." L"\r\n\r\n" L"Приложение переходит с SSL-подключения на подключение без SSL из-за перенаправления." L"\r\n\r\n"},
    {12041, L"\r\nLast Error: 12041.\r\n\r\n" L"The content is not entirely secure. Some of the content being viewed may have come from unsecured servers." L"\r\n\r\n" L"Этот код указывает, что содержимое защищено не полностью. Возможно, некоторые из просматриваемых данных получены с незащищенных серверов." L"\r\n\r\n"},
    {12042, L"\r\nLast Error: 12042.\r\n\r\n" L"The application is posting and attempting to change multiple lines of text on a server that is not secure." L"\r\n\r\n" L"Приложение отправляет данные и пытается изменить несколько строк текста на незащищенном сервере." L"\r\n\r\n"},
    {12043, L"\r\nLast Error: 12043.\r\n\r\n" L"The application is posting data to a server that is not secure." L"\r\n\r\n" L"Приложение отправляет данные на незащищенный сервер." L"\r\n\r\n"},
    {12044, L"\r\nLast Error: 12044.\r\n\r\n" L"The server is requesting client authentication." L"\r\n\r\n" L"Сервер запрашивает аутентификацию клиента." L"\r\n\r\n"},
    {12045, L"\r\nLast Error: 12045.\r\n\r\n" L"The function is unfamiliar with the Certificate Authority that generated the server's certificate." L"\r\n\r\n" L"Функция не знакома с Certificate Authority, сгенерированный сертификат сервера." L"\r\n\r\n"},
    {12046, L"\r\nLast Error: 12046.\r\n\r\n" L"Client authorization is not set up on this computer." L"\r\n\r\n" L"Авторизацию клиента не установлена на этом компьютере." L"\r\n\r\n"},
    {12047, L"\r\nLast Error: 12047.\r\n\r\n" L"The application could not start an asynchronous thread." L"\r\n\r\n" L"Приложение не может начать асинхронного потока." L"\r\n\r\n"},
    {12048, L"\r\nLast Error: 12048.\r\n\r\n" L"The function could not handle the redirection, because the scheme changed (for example, HTTP to FTP)." L"\r\n\r\n" L"Эта функция может не производить переадресацию, потому что схема изменилась (например, HTTP, FTP)." L"\r\n\r\n"},
    {12049, L"\r\nLast Error: 12049.\r\n\r\n" L"Another thread has a password dialog box in progress." L"\r\n\r\n" L"Еще одна нить есть пароль в диалоговом окне прогресса." L"\r\n\r\n"},
    {12050, L"\r\nLast Error: 12050.\r\n\r\n" L"The dialog box should be retried." L"\r\n\r\n" L"В диалоговом окне должна быть повторен." L"\r\n\r\n"},
    {12052, L"\r\nLast Error: 12052.\r\n\r\n" L"The data being submitted to an SSL connection is being redirected to a non-SSL connection." L"\r\n\r\n" L"В данных, представленных на SSL-соединение перенаправляется на не-SSL-соединение." L"\r\n\r\n"},
    {12053, L"\r\nLast Error: 12053.\r\n\r\n" L"The request requires a CD-ROM to be inserted in the CD-ROM drive to locate the resource requested." L"\r\n\r\n" L"Запрос требует компакт-диск будет вставлен в CD-ROM, чтобы найти ресурс просила." L"\r\n\r\n"},
    {12054, L"\r\nLast Error: 12054.\r\n\r\n" L"The requested resource requires Fortezza authentication." L"\r\n\r\n" L"Запрошенный ресурс требует от сервера аутентификации." L"\r\n\r\n"},
    {12055, L"\r\nLast Error: 12055.\r\n\r\n" L"The SSL certificate contains errors." L"\r\n\r\n" L"SSL-сертификат содержит ошибки." L"\r\n\r\n"},
    {12056, L"\r\nLast Error: 12056.\r\n\r\n" L"The SSL certificate was not revoked." L"\r\n\r\n" L"SSL-сертификат не отозван." L"\r\n\r\n"},
    {12057, L"\r\nLast Error: 12057.\r\n\r\n" L"Revocation of the SSL certificate failed." L"\r\n\r\n" L"Отзыва сертификата SSL не удалось." L"\r\n\r\n"},
    {12110, L"\r\nLast Error: 12110.\r\n\r\n" L"The requested operation cannot be made on the FTP session handle because an operation is already in progress." L"\r\n\r\n" L"Запрошенную операцию невозможно выполнить для дескриптора FTP-сеанса, так как операция уже выполняется." L"\r\n\r\n"},
    {12111, L"\r\nLast Error: 12111.\r\n\r\n" L"The FTP operation was not completed because the session was aborted." L"\r\n\r\n" L"FTP-операция не завершена из-за прекращения сеанса." L"\r\n\r\n"},
    {12112, L"\r\nLast Error: 12112.\r\n\r\n" L"Passive mode is not available on the server." L"\r\n\r\n" L"Пассивный режим не доступен на сервере." L"\r\n\r\n"},
    {12130, L"\r\nLast Error: 12130.\r\n\r\n" L"An error was detected while parsing data returned from the Gopher server." L"\r\n\r\n" L"При разборе данных, полученных от сервера GOPHER, была обнаружена ошибка." L"\r\n\r\n"},
    {12131, L"\r\nLast Error: 12131.\r\n\r\n" L"The request must be made for a file locator." L"\r\n\r\n" L"Должен быть выполнен запрос для средства поиска файлов." L"\r\n\r\n"},
    {12132, L"\r\nLast Error: 12132.\r\n\r\n" L"An error was detected while receiving data from the Gopher server." L"\r\n\r\n" L"При получении данных от сервера gopher была обнаружена ошибка." L"\r\n\r\n"},
    {12133, L"\r\nLast Error: 12133.\r\n\r\n" L"The end of the data has been reached." L"\r\n\r\n" L"Достигнут конец данных." L"\r\n\r\n"},
    {12134, L"\r\nLast Error: 12134.\r\n\r\n" L"The supplied locator is not valid." L"\r\n\r\n" L"Представлен неверный указатель." L"\r\n\r\n"},
    {12135, L"\r\nLast Error: 12135.\r\n\r\n" L"The DWORD of the locator is not correct for this operation." L"\r\n\r\n" L"Неверный тип указателя для данной операции." L"\r\n\r\n"},
    {12136, L"\r\nLast Error: 12136.\r\n\r\n" L"The requested operation can be made only against a Gopher+ server, or with a locator that specifies a Gopher+ operation." L"\r\n\r\n" L"Запрошенная операция может быть выполнена только с сервером Gopher+ или указателем на операцию Gopher+." L"\r\n\r\n"},
    {12137, L"\r\nLast Error: 12137.\r\n\r\n" L"The requested attribute could not be located." L"\r\n\r\n" L"Не удалось найти запрошенный атрибут." L"\r\n\r\n"},
    {12138, L"\r\nLast Error: 12138.\r\n\r\n" L"The locator DWORD is unknown." L"\r\n\r\n" L"Неизвестный тип указателя." L"\r\n\r\n"},
    {12150, L"\r\nLast Error: 12150.\r\n\r\n" L"The requested header could not be located." L"\r\n\r\n" L"Не удалось найти запрошенный заголовок." L"\r\n\r\n"},
    {12151, L"\r\nLast Error: 12151.\r\n\r\n" L"The server did not return any headers." L"\r\n\r\n" L"Сервер не возвратил заголовок." L"\r\n\r\n"},
    {12152, L"\r\nLast Error: 12152.\r\n\r\n" L"The server response could not be parsed." L"\r\n\r\n" L"Не удалось обработать ответ сервера." L"\r\n\r\n"},
    {12153, L"\r\nLast Error: 12153.\r\n\r\n" L"The supplied header is invalid." L"\r\n\r\n" L"Предоставлен неверный заголовок." L"\r\n\r\n"},
    {12154, L"\r\nLast Error: 12154.\r\n\r\n" L"The request made to HttpQueryInfo is invalid." L"\r\n\r\n" L"Недопустимый запрос функции \"HttpQueryInfo()\"." L"\r\n\r\n"},
    {12155, L"\r\nLast Error: 12155.\r\n\r\n" L"The header could not be added because it already exists." L"\r\n\r\n" L"Не удалось добавить заголовок, поскольку он уже существует." L"\r\n\r\n"},
    {12156, L"\r\nLast Error: 12156.\r\n\r\n" L"The redirection failed because either the scheme changed (for example, HTTP to FTP) or all attempts made to redirect failed (default is five attempts)." L"\r\n\r\n" L"Сбой переправления, вызванный или изменением схемы (например, с HTTP на FTP) или неудачным завершением всех попыток перенаправления (по умолчанию пять попыток)." L"\r\n\r\n"},
    {12157, L"\r\nLast Error: 12157.\r\n\r\n" L"The application experienced an internal error loading the SSL libraries." L"\r\n\r\n" L"В приложении возникла внутренняя ошибка загрузки SSL библиотеки." L"\r\n\r\n"},
    {12158, L"\r\nLast Error: 12158.\r\n\r\n" L"The function was unable to cache the file." L"\r\n\r\n" L"Функция не для кэширования файлов." L"\r\n\r\n"},
    {12159, L"\r\nLast Error: 12159.\r\n\r\n" L"The required protocol stack is not loaded and the application cannot start WinSock." L"\r\n\r\n" L"Требуемый стек протоколов не загружается, а приложение не может начать WinSock." L"\r\n\r\n"},
    {12160, L"\r\nLast Error: 12160.\r\n\r\n" L"The HTTP request was not redirected." L"\r\n\r\n" L"HTTP-запрос не был перенаправлен." L"\r\n\r\n"},
    {12161, L"\r\nLast Error: 12161.\r\n\r\n" L"The HTTP cookie requires confirmation." L"\r\n\r\n" L"HTTP-cookie требует подтверждения." L"\r\n\r\n"},
    {12162, L"\r\nLast Error: 12162.\r\n\r\n" L"The HTTP cookie was declined by the server." L"\r\n\r\n" L"HTTP-cookie был отклонен сервером." L"\r\n\r\n"},
    {12163, L"\r\nLast Error: 12163.\r\n\r\n" L"The Internet connection has been lost." L"\r\n\r\n" L"Интернет-соединение было утеряно." L"\r\n\r\n"},
    {12164, L"\r\nLast Error: 12164.\r\n\r\n" L"The Web site or server indicated is unreachable." L"\r\n\r\n" L"С сайта или сервера, указанные недоступен." L"\r\n\r\n"},
    {12165, L"\r\nLast Error: 12165.\r\n\r\n" L"The designated proxy server cannot be reached." L"\r\n\r\n" L"Назначенный прокси-сервер не может быть достигнута." L"\r\n\r\n"},
    {12166, L"\r\nLast Error: 12166.\r\n\r\n" L"There was an error in the automatic proxy configuration script." L"\r\n\r\n" L"Ошибка в автоматической настройки прокси-скрипт." L"\r\n\r\n"},
    {12167, L"\r\nLast Error: 12167.\r\n\r\n" L"The automatic proxy configuration script could not be downloaded. The INTERNET_FLAG_MUST_CACHE_REQUEST flag was set." L"\r\n\r\n" L"Автоматическая конфигурация прокси-сервера, сценарий не может быть загружен. В INTERNET_FLAG_MUST_CACHE_REQUEST установлен флаг." L"\r\n\r\n"},
    {12168, L"\r\nLast Error: 12168.\r\n\r\n" L"The redirection requires user confirmation." L"\r\n\r\n" L"Перенаправление требует подтверждения пользователем." L"\r\n\r\n"},
    {12169, L"\r\nLast Error: 12169.\r\n\r\n" L"SSL certificate is invalid." L"\r\n\r\n" L"SSL-сертификат является недействительным." L"\r\n\r\n"},
    {12170, L"\r\nLast Error: 12170.\r\n\r\n" L"SSL certificate was revoked." L"\r\n\r\n" L"SSL сертификат был отозван." L"\r\n\r\n"},
    {12171, L"\r\nLast Error: 12171.\r\n\r\n" L"The function failed due to a security check." L"\r\n\r\n" L"Функция не удалось из-за проверки." L"\r\n\r\n"},
    {12172, L"\r\nLast Error: 12172.\r\n\r\n" L"Initialization of the WinINet API has not occurred. Indicates that a higher-level function, such as InternetOpen, has not been called yet." L"\r\n\r\n" L"Инициализация WinINet API не произошло. Указывает, что выше уровня функции, такие как InternetOpen(), не называют." L"\r\n\r\n"},
    {12173, L"\r\nLast Error: 12173.\r\n\r\n" L"Not currently implemented." L"\r\n\r\n" L"В настоящее время не реализованы." L"\r\n\r\n"},
    {12174, L"\r\nLast Error: 12174.\r\n\r\n" L"The MS-Logoff digest header has been returned from the Web site. This header specifically instructs the digest package to purge credentials for the associated realm. This error will only be returned if INTERNET_ERROR_MASK_LOGIN_FAILURE_DISPLAY_ENTITY_BODY has been set." L"\r\n\r\n" L"MS-Logoff дайджест заголовок вернулся с сайта. Этот заголовок специально инструктирует дайджест пакета чтобы удалить полномочия, связанные сфере. Эта ошибка будет возвращена только в случае, если INTERNET_ERROR_MASK_LOGIN_FAILURE_DISPLAY_ENTITY_BODY он был установлен." L"\r\n\r\n"},
    {12175, L"\r\nLast Error: 12175.\r\n\r\n" L"WinINet failed to perform content decoding on the response. For more information, see the Content Encoding  topic." L"\r\n\r\n" L"WinINet не удалось выполнить содержание декодирования на ответ." L"\r\n\r\n"},
};
const Expected kExpectedDialog[] = {
    {0x0001, L"\r\nLast Error: 0x0001.\r\n\r\n" L"The lStructSize member of the initialization structure for the corresponding common dialog box is invalid." L"\r\n\r\n" L"Член \"lStructSize\" из структуры инициализации для соответствующего стандартного диалогового окна недопустим." L"\r\n\r\n"},
    {0x0002, L"\r\nLast Error: 0x0002.\r\n\r\n" L"The common dialog box function failed during initialization. This error often occurs when sufficient memory is not available." L"\r\n\r\n" L"Функция стандартного диалогового окна потерпела неудачу в ходе инициализации. Эта ошибка часто происходит, если памяти не достаточно." L"\r\n\r\n"},
    {0x0003, L"\r\nLast Error: 0x0003.\r\n\r\n" L"The ENABLETEMPLATE flag was set in the Flags member of the initialization structure for the corresponding common dialog box, but you failed to provide a corresponding template." L"\r\n\r\n" L"Флаг ENABLETEMPLATE был установлен в Flags члена структуры инициализации для соответствующего стандартного диалогового окна, но вы не сумели предоставить соответствующий шаблон." L"\r\n\r\n"},
    {0x0004, L"\r\nLast Error: 0x0004.\r\n\r\n" L"The ENABLETEMPLATE flag was set in the Flags member of the initialization structure for the corresponding common dialog box, but you failed to provide a corresponding instance handle." L"\r\n\r\n" L"Флаг ENABLETEMPLATE был установлен в Flags члена структуры инициализации для соответствующего стандартного диалогового окна, но вы не сумели предоставить соответствующий дескриптор экземпляра." L"\r\n\r\n"},
    {0x0005, L"\r\nLast Error: 0x0005.\r\n\r\n" L"The common dialog box function failed to load a specified string." L"\r\n\r\n" L"Функция стандартного диалогового окна не удалось загрузить указанную строку." L"\r\n\r\n"},
    {0x0006, L"\r\nLast Error: 0x0006.\r\n\r\n" L"The common dialog box function failed to find a specified resource." L"\r\n\r\n" L"Функция стандартного диалогового окна не удалось найти указанный ресурс." L"\r\n\r\n"},
    {0x0007, L"\r\nLast Error: 0x0007.\r\n\r\n" L"The common dialog box function failed to load a specified resource." L"\r\n\r\n" L"Функция стандартного диалогового окна не удалось загрузить указанный ресурс." L"\r\n\r\n"},
    {0x0008, L"\r\nLast Error: 0x0008.\r\n\r\n" L"The common dialog box function failed to lock a specified resource." L"\r\n\r\n" L"Функция стандартного диалогового окна не в состоянии заблокировать указанный ресурс." L"\r\n\r\n"},
    {0x0009, L"\r\nLast Error: 0x0009.\r\n\r\n" L"The common dialog box function was unable to allocate memory for internal structures." L"\r\n\r\n" L"Функция стандартного диалогового окна не смогла выделить память для внутренних структур." L"\r\n\r\n"},
    {0x000A, L"\r\nLast Error: 0x000A.\r\n\r\n" L"The common dialog box function was unable to lock the memory associated with a handle." L"\r\n\r\n" L"Функция стандартного диалогового окна не смогла закрепить память, связанную с дескриптором." L"\r\n\r\n"},
    {0x000B, L"\r\nLast Error: 0x000B.\r\n\r\n" L"The ENABLEHOOK flag was set in the Flags member of the initialization structure for the corresponding common dialog box, but you failed to provide a pointer to a corresponding hook procedure." L"\r\n\r\n" L"Флаг ENABLEHOOK был установлен в Flags члена структуры инициализации для соответствующего стандартного диалогового окна, но вы не сумели предоставить указатель на соответствующей HOOK-процедуры." L"\r\n\r\n"},
    {0x000C, L"\r\nLast Error: 0x000C.\r\n\r\n" L"The RegisterWindowMessage function returned an error code when it was called by the common dialog box function." L"\r\n\r\n" L"Функция \"RegisterWindowMessage()\" вернула код ошибки, когда она вызывалась функцией стандартного диалогового окна." L"\r\n\r\n"},
    {0x1001, L"\r\nLast Error: 0x1001.\r\n\r\n" L"The PrintDlg function failed to load the required resources." L"\r\n\r\n" L"Функции \"PrintDlg\" не удалось загрузить необходимые ресурсы." L"\r\n\r\n"},
    {0x1002, L"\r\nLast Error: 0x1002.\r\n\r\n" L"The PrintDlg function failed to parse the strings in the [devices] section of the WIN.INI file." L"\r\n\r\n" L"Функции \"PrintDlg\" не удалось разобрать строки в раздел файла WIN.INI [устройства]." L"\r\n\r\n"},
    {0x1003, L"\r\nLast Error: 0x1003.\r\n\r\n" L"The PD_RETURNDEFAULT flag was specified in the Flags member of the PRINTDLG structure, but the hDevMode or hDevNames member was not NULL." L"\r\n\r\n" L"Флаг PD_RETURNDEFAULT был определен во флагах члена PRINTDLG структуры, но член hDevMode или hDevNames не NULL." L"\r\n\r\n"},
    {0x1004, L"\r\nLast Error: 0x1004.\r\n\r\n" L"The PrintDlg function failed to load the device driver for the specified printer." L"\r\n\r\n" L"Функции \"PrintDlg\" не удалось загрузить драйвер устройства для указанного принтера." L"\r\n\r\n"},
    {0x1005, L"\r\nLast Error: 0x1005.\r\n\r\n" L"The printer driver failed to initialize a DEVMODE structure." L"\r\n\r\n" L"Драйвер принтера не удалось инициализировать структуру DEVMODE." L"\r\n\r\n"},
    {0x1006, L"\r\nLast Error: 0x1006.\r\n\r\n" L"The PrintDlg function failed during initialization, and there is no more specific extended error code to describe the failure. This is the generic default error code for the function." L"\r\n\r\n" L"Вызов функции \"PrintDlg\" не удался во время инициализации, и нет более конкретной расширенного кода ошибки, описывающий ошибку. Это базовый код ошибки по умолчанию для функции." L"\r\n\r\n"},
    {0x1007, L"\r\nLast Error: 0x1007.\r\n\r\n" L"No printer drivers were found." L"\r\n\r\n" L"Не было обнаружено никаких драйверов принтера." L"\r\n\r\n"},
    {0x1008, L"\r\nLast Error: 0x1008.\r\n\r\n" L"A default printer does not exist." L"\r\n\r\n" L"Принтер по умолчанию не существует." L"\r\n\r\n"},
    {0x1009, L"\r\nLast Error: 0x1009.\r\n\r\n" L"The data in the DEVMODE and DEVNAMES structures describes two different printers." L"\r\n\r\n" L"Данные в структурах DEVMODE и DEVNAMES описывают два различных принтеров." L"\r\n\r\n"},
    {0x100A, L"\r\nLast Error: 0x100A.\r\n\r\n" L"The PrintDlg function failed when it attempted to create an information context." L"\r\n\r\n" L"Функция \"PrintDlg\" потерпела неудачу, когда попыталась создать информационный контекст." L"\r\n\r\n"},
    {0x100B, L"\r\nLast Error: 0x100B.\r\n\r\n" L"The [devices] section of the WIN.INI file did not contain an entry for the requested printer." L"\r\n\r\n" L"Раздел файле WIN.INI [устройства] не содержит записи для запрашиваемого принтера." L"\r\n\r\n"},
    {0x100C, L"\r\nLast Error: 0x100C.\r\n\r\n" L"You called the PrintDlg function with the DN_DEFAULTPRN flag specified in the wDefault member of the DEVNAMES structure, but the printer described by the other structure members did not match the current default printer.\r\nThis error occurs when you store the DEVNAMES structure, and the user changes the default printer by using the Control Panel.\r\nTo use the printer described by the DEVNAMES structure, clear the DN_DEFAULTPRN flag and call PrintDlg again.\r\nTo use the default printer, replace the DEVNAMES structure (and the structure, if one exists) with NULL; and call PrintDlg again." L"\r\n\r\n" L"Вызвана функция \"PrintDlg()\" с флагом DN_DEFAULTPRN, определенным в элементе wDefault в структуре DEVNAMES, но принтер описывается другими членами структуры, не соответствует текущей принтер по умолчанию.\r\nЭта ошибка возникает при сохранении структуры DEVNAMES, и пользователь изменяет принтер по умолчанию, с помощью панели управления.\r\nДля использования принтера, описанный в DEVNAMES структуры, сбросьте бит флажка DN_DEFAULTPRN и вызвать функцию \"PrintDlg()\" снова.\r\nЧтобы использовать принтер по умолчанию, замените структуру DEVNAMES (и структуру, если таковой существует) с NULL, и вызвать функцию \"PrintDlg()\" снова." L"\r\n\r\n"},
    {0x2001, L"\r\nLast Error: 0x2001.\r\n\r\n" L"No fonts exist." L"\r\n\r\n" L"Не существует шрифты." L"\r\n\r\n"},
    {0x2002, L"\r\nLast Error: 0x2002.\r\n\r\n" L"The size specified in the nSizeMax member of the CHOOSEFONT structure is less than the size specified in the nSizeMin member." L"\r\n\r\n" L"Размер, указанный в элементе nSizeMax в структуре CHOOSEFONT меньше размера, указанного в элементе nSizeMin." L"\r\n\r\n"},
    {0x3001, L"\r\nLast Error: 0x3001.\r\n\r\n" L"An attempt to subclass a list box failed because sufficient memory was not available." L"\r\n\r\n" L"Попытка окна создать подкласс списка потерпела неудачу, из-за нехватки памяти был не доступен." L"\r\n\r\n"},
    {0x3002, L"\r\nLast Error: 0x3002.\r\n\r\n" L"A file name is invalid." L"\r\n\r\n" L"Недопустимое имя файла." L"\r\n\r\n"},
    {0x3003, L"\r\nLast Error: 0x3003.\r\n\r\n" L"The buffer pointed to by the lpstrFile member of the OPENFILENAME structure is too small for the file name specified by the user.\r\nThe first two bytes of the lpstrFile buffer contain an integer value specifying the size required to receive the full name, in characters." L"\r\n\r\n" L"Буфер, на который указывает член lpstrFile из структуры OPENFILENAME слишком мал для имени файла, указанного пользователем.\r\nПервые два байта буфера lpstrFile содержать целое значение, определяющее размер, требуемый для получения полного имени, в символах." L"\r\n\r\n"},
    {0x4001, L"\r\nLast Error: 0x4001.\r\n\r\n" L"A member of the FINDREPLACE structure points to an invalid buffer." L"\r\n\r\n" L"Член структуры FINDREPLACE указывает на недопустимый буфер." L"\r\n\r\n"},
    {0xFFFF, L"\r\nLast Error: 0xFFFF.\r\n\r\n" L"The dialog box could not be created. The common dialog box function's call to the DialogBox function failed. For example, this error occurs if the common dialog box call specifies an invalid window handle." L"\r\n\r\n" L"Диалоговое окно не может быть создано. Вызов стандартного диалогового окна функции DialogBox не удалось. Эта ошибка возникает, если стандартное диалоговое окно вызывает задает неверный дескриптор окна." L"\r\n\r\n"},
};
const Expected kExpectedShell[] = {
    {0x00071, L"\r\nLast Error: 0x00071.\r\n\r\n" L"The source and destination files are the same file." L"\r\n\r\n" L"Пути исходного и конечного файлов одинаковы." L"\r\n\r\n"},
    {0x00072, L"\r\nLast Error: 0x00072.\r\n\r\n" L"Multiple file paths were specified in the source buffer, but only one destination file path." L"\r\n\r\n" L"Пути нескольких файлов были указаны в исходном буфере, но только один из них путь к файлу." L"\r\n\r\n"},
    {0x00073, L"\r\nLast Error: 0x00073.\r\n\r\n" L"Rename operation was specified but the destination path is a different directory. Use the move operation instead." L"\r\n\r\n" L"Указана операция переименования, но путь назначения является другой каталог. Используйте операцию перемещения." L"\r\n\r\n"},
    {0x00074, L"\r\nLast Error: 0x00074.\r\n\r\n" L"The source is a root directory, which cannot be moved or renamed." L"\r\n\r\n" L"Источники корневые каталоги, которые не могут быть перемещены или переименованы." L"\r\n\r\n"},
    {0x00075, L"\r\nLast Error: 0x00075.\r\n\r\n" L"The operation was canceled by the user, or silently canceled if the appropriate flags were supplied to SHFileOperation." L"\r\n\r\n" L"Операция была отменена пользователем, или отменена по умолчанию." L"\r\n\r\n"},
    {0x00076, L"\r\nLast Error: 0x00076.\r\n\r\n" L"The destination is a subtree of the source." L"\r\n\r\n" L"Путь назначения поддерево пути источника." L"\r\n\r\n"},
    {0x00078, L"\r\nLast Error: 0x00078.\r\n\r\n" L"Security settings denied access to the source." L"\r\n\r\n" L"Настройки защиты отказывают в доступе к пути источника." L"\r\n\r\n"},
    {0x00079, L"\r\nLast Error: 0x00079.\r\n\r\n" L"The source or destination path exceeded or would exceed MAX_PATH." L"\r\n\r\n" L"Пути источника или назначения превысили или превысят MAX_PATH." L"\r\n\r\n"},
    {0x0007A, L"\r\nLast Error: 0x0007A.\r\n\r\n" L"The operation involved multiple destination paths, which can fail in the case of a move operation." L"\r\n\r\n" L"В операции участвовало несколько путей назначения, которые могут потерпеть неудачу в случае операции перемещения." L"\r\n\r\n"},
    {0x0007C, L"\r\nLast Error: 0x0007C.\r\n\r\n" L"The path in the source or destination or both was invalid." L"\r\n\r\n" L"Путь в источнике или назначения недействителен." L"\r\n\r\n"},
    {0x0007D, L"\r\nLast Error: 0x0007D.\r\n\r\n" L"The source and destination have the same parent folder." L"\r\n\r\n" L"Пути источника и назначения имеют одинаковую родительскую папку." L"\r\n\r\n"},
    {0x0007E, L"\r\nLast Error: 0x0007E.\r\n\r\n" L"The destination path is an existing file." L"\r\n\r\n" L"Путь назначения существующего файла." L"\r\n\r\n"},
    {0x00080, L"\r\nLast Error: 0x00080.\r\n\r\n" L"The destination path is an existing folder." L"\r\n\r\n" L"Путь назначения существующей папки." L"\r\n\r\n"},
    {0x00081, L"\r\nLast Error: 0x00081.\r\n\r\n" L"The name of the file exceeds MAX_PATH." L"\r\n\r\n" L"Имя файла превышает MAX_PATH." L"\r\n\r\n"},
    {0x00082, L"\r\nLast Error: 0x00082.\r\n\r\n" L"The destination is a read-only CD-ROM, possibly unformatted." L"\r\n\r\n" L"Путь назначения только для чтения CD-ROM, возможно не форматированный." L"\r\n\r\n"},
    {0x00083, L"\r\nLast Error: 0x00083.\r\n\r\n" L"The destination is a read-only DVD, possibly unformatted." L"\r\n\r\n" L"Путь назначения только для чтения DVD, возможно не форматированный." L"\r\n\r\n"},
    {0x00084, L"\r\nLast Error: 0x00084.\r\n\r\n" L"The destination is a writable CD-ROM, possibly unformatted." L"\r\n\r\n" L"Путь назначения для записи CD-ROM, возможно не форматированный." L"\r\n\r\n"},
    {0x00085, L"\r\nLast Error: 0x00085.\r\n\r\n" L"The file involved in the operation is too large for the destination media or file system." L"\r\n\r\n" L"Файлы, участвующие в операции являются слишком большими." L"\r\n\r\n"},
    {0x00086, L"\r\nLast Error: 0x00086.\r\n\r\n" L"The source is a read-only CD-ROM, possibly unformatted." L"\r\n\r\n" L"Источник только для чтения CD-ROM, возможно не форматированный." L"\r\n\r\n"},
    {0x00087, L"\r\nLast Error: 0x00087.\r\n\r\n" L"The source is a read-only DVD, possibly unformatted." L"\r\n\r\n" L"Источник только для чтения DVD, возможно не форматированный." L"\r\n\r\n"},
    {0x00088, L"\r\nLast Error: 0x00088.\r\n\r\n" L"The source is a writable CD-ROM, possibly unformatted." L"\r\n\r\n" L"Источник для записи CD-ROM, возможно не форматированный." L"\r\n\r\n"},
    {0x000B7, L"\r\nLast Error: 0x000B7.\r\n\r\n" L"MAX_PATH was exceeded during the operation." L"\r\n\r\n" L"MAX_PATH был превышен во время операции." L"\r\n\r\n"},
    {0x00402, L"\r\nLast Error: 0x00402.\r\n\r\n" L"An unknown error occurred. This is typically due to an invalid path in the source or destination. This error does not occur on Windows Vista and later." L"\r\n\r\n" L"Неизвестная ошибка. Это, как правило, из-за неверного пути в источнике или назначения." L"\r\n\r\n"},
    {0x10000, L"\r\nLast Error: 0x10000.\r\n\r\n" L"An unspecified error occurred on the destination." L"\r\n\r\n" L"Неизвестная ошибка по пути назначения." L"\r\n\r\n"},
    {0x10074, L"\r\nLast Error: 0x10074.\r\n\r\n" L"Destination is a root directory and cannot be renamed." L"\r\n\r\n" L"Путь является корневым каталогом и не может быть переименован." L"\r\n\r\n"},
};
// clang-format on

const wchar_t kSuccessBlock[] = L"\r\nLast Error: 0.\r\n\r\nThe operation completed "
                                L"successfully.\r\n\r\nОперация успешно завершена.\r\n\r\n";

std::wstring FromCp1251(const std::string& text) {
    return Utils::CodingStr::AnsiToUnicode(text, 1251);
}

template <size_t N> std::set<long> Codes(const Expected (&table)[N]) {
    std::set<long> codes;
    for (const Expected& e : table)
        codes.insert(e.code);
    return codes;
}

TEST(InternetTable, EveryEntryGivesItsBlock) {
    EXPECT_EQ(sizeof(kExpectedInternet) / sizeof(kExpectedInternet[0]), 93u);
    EXPECT_EQ(Codes(kExpectedInternet).size(), 93u);
    for (const Expected& e : kExpectedInternet) {
        if (e.code == 12003)
            continue; // the server's response, below
        SCOPED_TRACE(e.code);
        EXPECT_EQ(Utils::Error::InternetW(e.code), e.block);
        EXPECT_EQ(FromCp1251(Utils::Error::InternetA(e.code)), e.block);
        // The long describer reads the code from the thread's last error.
        ::SetLastError(static_cast<DWORD>(e.code));
        EXPECT_EQ(Utils::Error::DescriptionW<long>(0), e.block);
    }
}

// Walks the whole range and its neighbours: a code without an entry gets the system layout.
TEST(InternetTable, CodesWithoutEntryFallBackToTheSystemText) {
    const std::set<long> codes = Codes(kExpectedInternet);
    int fallbacks = 0;
    for (long code = 11990; code <= 12190; ++code) {
        if (codes.count(code) != 0)
            continue;
        SCOPED_TRACE(code);
        ++fallbacks;
        EXPECT_EQ(Utils::Error::InternetW(code), SystemDescriptionW(static_cast<unsigned long>(code)));
        EXPECT_EQ(Utils::Error::InternetA(code), SystemDescriptionA(static_cast<unsigned long>(code)));
    }
    EXPECT_EQ(fallbacks, 201 - 93);
    for (const long code :
         {12035l, 12100l, 12000l, 12176l, 12051l, 12058l, 12109l, 12113l, 12129l, 12139l, 12149l}) {
        EXPECT_EQ(codes.count(code), 0u) << code;
        EXPECT_EQ(Utils::Error::InternetW(code).find(L"\nLast Error: " + std::to_wstring(code) + L".\n"), 0u);
    }
}

TEST(InternetTable, LongDescriberLeavesCodesOutsideTheRangeToTheSystem) {
    for (const DWORD code : {0ul, 2ul, 12000ul, 12176ul, 0x80070005ul}) {
        SCOPED_TRACE(code);
        const std::wstring expected = SystemDescriptionW(code); // may change the last error itself
        ::SetLastError(code);
        EXPECT_EQ(Utils::Error::DescriptionW<long>(12002), expected);
    }
}

TEST(DescriptionTables, CodeZeroIsTheSharedBilingualEntry) {
    EXPECT_EQ(Utils::Error::InternetW(0), kSuccessBlock);
    EXPECT_EQ(FromCp1251(Utils::Error::InternetA(0)), kSuccessBlock);
    EXPECT_EQ(CommonDialogDescriptionW(0), kSuccessBlock);
    EXPECT_EQ(FromCp1251(CommonDialogDescriptionA(0)), kSuccessBlock);
    EXPECT_EQ(ShellOperationDescriptionW(0), kSuccessBlock);
}

TEST(DescriptionTables, EightBitCopiesAreCodePage1251) {
    // "Запрос просрочен." in code page 1251, byte by byte.
    const std::string a = Utils::Error::InternetA(12002);
    EXPECT_NE(a.find("\xC7\xE0\xEF\xF0\xEE\xF1 \xEF\xF0\xEE\xF1\xF0\xEE\xF7\xE5\xED."), std::string::npos);
    EXPECT_EQ(a.find("\xD0"), std::string::npos); // no UTF-8 lead byte of Cyrillic
}

TEST(DialogTable, EveryEntryGivesItsBlock) {
    EXPECT_EQ(sizeof(kExpectedDialog) / sizeof(kExpectedDialog[0]), 31u);
    for (const Expected& e : kExpectedDialog) {
        SCOPED_TRACE(e.code);
        EXPECT_EQ(CommonDialogDescriptionW(static_cast<unsigned long>(e.code)), e.block);
        EXPECT_EQ(FromCp1251(CommonDialogDescriptionA(static_cast<unsigned long>(e.code))), e.block);
    }
}

TEST(DialogTable, CodesWithoutEntryFallBackToTheSystemText) {
    for (const unsigned long code : {0x000Dul, 0x100Dul, 0x2003ul, 0x3004ul, 0x4002ul, 0xFFFEul, 0x10000ul}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(CommonDialogDescriptionW(code), SystemDescriptionW(code));
        EXPECT_EQ(CommonDialogDescriptionA(code), SystemDescriptionA(code));
    }
}

TEST(ShellTable, EveryEntryGivesItsBlock) {
    EXPECT_EQ(sizeof(kExpectedShell) / sizeof(kExpectedShell[0]), 25u);
    for (const Expected& e : kExpectedShell) {
        SCOPED_TRACE(e.code);
        EXPECT_EQ(ShellOperationDescriptionW(static_cast<int>(e.code)), e.block);
    }
}

TEST(ShellTable, CodesWithoutEntryFallBackToTheSystemText) {
    for (const int code : {0x00077, 0x0007B, 0x0007F, 0x00070, 0x00089, 0x10001}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(ShellOperationDescriptionW(code), SystemDescriptionW(static_cast<unsigned long>(code)));
    }
}

// 12003 is the server's last response; without one the block is the header and an empty line, and
// a failed query shows its notice.
TEST(InternetTable, ServerResponseHasTheHeaderAndTheResponse) {
    BoxRecorder boxes;
    const std::wstring wide = Utils::Error::InternetW(12003);
    const std::string narrow = Utils::Error::InternetA(12003);
    const std::wstring header = L"\r\nLast Error: 12003.\r\n\r\n";
    EXPECT_EQ(wide.compare(0, header.size(), header), 0);
    EXPECT_EQ(wide.compare(wide.size() - 4, 4, L"\r\n\r\n"), 0);
    EXPECT_EQ(narrow.compare(0, 24, "\r\nLast Error: 12003.\r\n\r\n"), 0);
    for (const Box& box : boxes.Boxes()) {
        EXPECT_EQ(box.caption.compare(0, 22, L"Utils::Error::Internet"), 0);
        EXPECT_NE(box.text.find(L"Ошибка получения расширенного описания интернет-ошибки."),
                  std::wstring::npos);
        EXPECT_NE(box.text.find(L"File: \"Utils.Error.cpp\"\r\nLine: 825\r\n"), std::wstring::npos);
    }
}

TEST(DescriberBranches, DialogCodeTypeReadsTheLastErrorAsADialogCode) {
    BoxRecorder boxes;
    ::SetLastError(0x3002);
    EXPECT_EQ(
        Utils::Error::DescriptionW<unsigned short>(0),
        L"\r\nLast Error: 0x3002.\r\n\r\nA file name is invalid.\r\n\r\nНедопустимое имя файла.\r\n\r\n");
    EXPECT_TRUE(boxes.Boxes().empty());
}

TEST(DescriberBranches, ShellCodeTypeShowsItsNoticeFirst) {
    BoxRecorder boxes;
    ::SetLastError(0x71);
    EXPECT_EQ(Utils::Error::DescriptionW<int>(0),
              L"\r\nLast Error: 0x00071.\r\n\r\nThe source and destination files are the same file.\r\n\r\n"
              L"Пути исходного и конечного файлов одинаковы.\r\n\r\n");
    const std::vector<Box> shown = boxes.WaitFor(1);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].caption, L"Utils::Error::DescriptionW");
    EXPECT_EQ(shown[0].icon, TestSupport::BoxIcon::Information);
    EXPECT_NE(
        shown[0].text.find(L"::DescriptionW<int>(int)\"!\r\nFile: \"Utils.Error.cpp\"\r\nLine: 522\r\n"),
        std::wstring::npos);
    EXPECT_NE(shown[0].text.find(L"\nДля функций библиотеки \"Shell32.dll\" не предусмотренно автоматическое "
                                 L"получение кода ошибки.\n"),
              std::wstring::npos);
}

TEST(DescriberBranches, OtherCodeTypesShowANoticeAndGiveNothing) {
    BoxRecorder boxes;
    ::SetLastError(5);
    EXPECT_EQ(Utils::Error::DescriptionW<double>(0.0), L"");
    const std::vector<Box> shown = boxes.WaitFor(1);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].caption, L"Utils::Error::DescriptionW");
    EXPECT_NE(
        shown[0].text.find(L"\nНепредусмотренный тип данных ошибки. Тип может быть LONG или WORD или INT.\n"),
        std::wstring::npos);
}

} // namespace
